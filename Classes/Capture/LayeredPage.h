#pragma once

#include "Classes/Capture/PageLayers.h"
#include "Classes/Capture/WebPage.h"
#include "Classes/Export/ZQScreenshotPSDLayer.h"

#include <QList>
#include <QRect>

#include <functional>
#include <optional>

// The elements of a page that is held still, each photographed alone over a transparent ground: everything else is
// hidden meanwhile, so that an element keeps the place, the opacity and the clipping that those around it give it. One
// thread.
class LayeredPage
{
public:
    // `rect`: of the page, in points, from its top left.
    LayeredPage(WebPage &page, const QRect &rect) : m_page(page), m_rect(rect) {}

    bool divide(ZQError *error = nullptr);
    qsizetype count() const { return m_division.layers.size() + 1; } // with the ground, at most
    qsizetype joined() const { return m_division.joined; }
    // Photographs one after another and hands each over, the bottom one first; one at a time is held. Those of which
    // nothing is seen are left out. `take` answers false to end it.
    bool photograph(const std::function<bool(const ZQScreenshotPSDLayer &layer)> &take, ZQError *error = nullptr);

private:
    enum class Hidden { AllButGround, All };
    bool hide(Hidden hidden, ZQError *error);
    bool show(const QList<int> &marks, bool isShown, ZQError *error);
    bool setTransparent(ZQError *error);
    std::optional<ZQScreenshotPSDLayer> ground(ZQError *error);
    std::optional<ZQScreenshotPSDLayer> layer(const PageLayers::Layer &layer, ZQError *error);

    WebPage &m_page;
    const QRect m_rect;
    PageLayers::Division m_division;
};
