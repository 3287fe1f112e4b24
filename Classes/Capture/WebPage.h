#pragma once

#include "Classes/Capture/DevToolsPage.h"
#include "Classes/Capture/PageReach.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QRect>
#include <QSet>
#include <QSize>
#include <QString>

#include <optional>
#include <utility>

// One page as it is drawn by a browser without a window: loaded, held still, and photographed. Its viewport stays as
// high as a window's, so that what is fixed to the window appears once, where it stands at the top of the page, and
// what is as high as the window stays so. One thread.
class WebPage
{
public:
    struct Layout
    {
        int width = 0; // of the page, in points
        int height = 0;
        int scale = 1; // pixels a point
    };

    // `deadline` for all of it.
    WebPage(DevToolsPipe &pipe, DevToolsPage::Time deadline) : m_devTools(pipe, deadline) {}

    // Where the page itself leads farther, by its address, a redirect or a link, is an error of `open`; frames,
    // pictures and whatever else of it lies there stay away. Before `open`.
    void setReach(PageReach reach) { m_reach.emplace(std::move(reach)); }
    // Goes to the address, in a window of that width, and waits for what is loaded; `isWhole` also for what is only
    // loaded when it is scrolled to, within `mostHeight` points. A page that does not come to an end is taken as it
    // stands.
    bool open(const QString &url, int width, int scale, bool isWhole, int mostHeight, ZQError *error = nullptr);
    // From then on nothing on it moves, and none of its scripts runs.
    bool holdStill(ZQError *error = nullptr);

    bool isLoaded() const { return m_isLoaded; } // in full; else as far as it was there in time
    QSize viewport() const { return m_viewport; }
    int scale() const { return m_scale; }
    std::optional<QSize> contentSize(ZQError *error = nullptr);   // in points
    int status() const { return m_statusOfFrame.value(m_frame); } // that its server answered with; 0: none did
    QString title();
    QString url(); // where it ended up

    // A PNG of a part of the page, in points; `zoom` for a smaller one.
    enum class Packing { Fast, Small };
    std::optional<QByteArray> photograph(const QRect &rect, Packing packing, double zoom = 1, ZQError *error = nullptr);
    // The same in pixels: RGBA with straight alpha, of exactly that size; by pieces, however large it is. `didTake`
    // with what part of it is there, 0 to 1.
    std::optional<QImage> picture(const QRect &rect, ZQError *error = nullptr,
                                  const std::function<void(double)> &didTake = {});
    static QImage decoded(const QByteArray &png, QSize size, ZQError *error); // null when it is none of that size

    DevToolsPage &devTools() { return m_devTools; }

private:
    void observe(const QString &method, const QJsonObject &parameters);
    void observeNetwork(const QString &method, const QJsonObject &parameters);
    bool prepare(int width, ZQError *error);
    bool guard(ZQError *error);
    void judge(const QJsonObject &parameters);
    bool isOver() const { return m_isCrashed || !m_refusedHost.isEmpty(); } // nothing more of it comes
    bool navigate(const QString &url, ZQError *error);
    void waitUntilQuiet();
    bool isQuiet() const;
    bool check(ZQError *error) const;

    DevToolsPage m_devTools;
    QSize m_viewport;
    int m_scale = 1;
    QString m_address;
    std::optional<PageReach> m_reach; // nothing: as far as it leads
    QString m_refusedHost;
    QString m_frame;
    QHash<QString, int> m_statusOfFrame; // answers come before it is known which frame is the page's
    bool m_isLoaded = false;
    bool m_isCrashed = false;
    bool m_isDownload = false;
    QSet<QString> m_requests; // under way, by their number
    DevToolsPage::Time m_lastTraffic;
    DevToolsPage::Time m_loadEnd; // until which it is waited for
};
