#pragma once

#include "Classes/Import/XDirectSaveProtocol.h"

#include <QByteArray>
#include <QString>

#include <memory>

// The direct-save protocol of drags between programs, as seen by the one that is dragged from: the name of the file
// stands in a property of the drag's window, the target writes the whole address over it, and then asks for the drag's
// data in the format of the protocol, for which the file is written there. Main thread.
class DirectSaveSource
{
public:
    static inline const QString format = XDirectSaveProtocol::format;
    // What the target is answered.
    static inline const QByteArray saved = QByteArrayLiteral("S");
    static inline const QByteArray failed = QByteArrayLiteral("F"); // it may ask in another format
    static inline const QByteArray cancelled = QByteArrayLiteral("E");

    virtual ~DirectSaveSource() = default;
    virtual void propose(const QString &name) = 0; // once the drag has begun
    virtual QString address() = 0;                 // the path the target gave; empty for none, or one elsewhere

    // Null where the window is on no X display: nothing can be saved directly there.
    static std::unique_ptr<DirectSaveSource> make();
    // Of a file of this computer; empty for another one's.
    static QString pathOfAddress(const QByteArray &address);
};
