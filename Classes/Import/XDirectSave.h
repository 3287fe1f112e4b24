#pragma once

#include "Classes/Import/PromiseSource.h"

#include <QAbstractNativeEventFilter>

#include <xcb/xcb.h>

// The direct-save protocol of drags between programs of an X display, as seen by the one that is dropped on. The name
// stands in a property of the source's window, the address of the file is written over it, and then the drag's data is
// asked for in the format of the protocol: the source saves and answers S, or F or E. The toolkit would wait up to five
// seconds for that answer, with the window standing still; here it comes as an event.
//
// Main thread, with the toolkit's connection. What stands in this program's requests before it tells the source that
// the drag is over, the source sees first.
class XDirectSave : public PromiseSource, private QAbstractNativeEventFilter
{
public:
    // An empty one when the window is not on an X display.
    static PromiseSourceMaker maker();

    XDirectSave(xcb_connection_t *display, const QString &offered);
    ~XDirectSave() override;
    XDirectSave(const XDirectSave &) = delete;
    XDirectSave &operator=(const XDirectSave &) = delete;

    QByteArray proposedName() override;
    void save(const QByteArray &address) override;
    std::optional<QByteArray> answer() override { return m_answer; }

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void ask();

    xcb_connection_t *const m_connection;
    const xcb_atom_t m_selection;
    const xcb_atom_t m_format;               // also the property's
    const xcb_window_t m_source;             // none: the program is gone
    xcb_window_t m_window = XCB_WINDOW_NONE; // that the answer is sent to
    std::optional<QByteArray> m_answer;
};
