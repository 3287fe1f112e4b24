#include "Classes/Capture/LayeredPage.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

// Numbers all elements, those in open shadow trees too, and keeps what shows and hides them.
const QString markAll = QStringLiteral(R"((() => {
    const elements = [];
    const sheet = new CSSStyleSheet();
    const walk = root => {
        root.adoptedStyleSheets = [...root.adoptedStyleSheets, sheet];
        for (const element of root.querySelectorAll('*')) {
            element.setAttribute('%1', elements.length);
            elements.push(element);
            if (element.shadowRoot) walk(element.shadowRoot);
        }
    };
    walk(document);
    globalThis.zeltoSheet = sheet;
    globalThis.zeltoShow = (numbers, isShown) => {
        for (const number of numbers) {
            const style = elements[number]?.style;
            if (!style) continue;
            if (isShown) style.setProperty('visibility', 'visible', 'important');
            else style.removeProperty('visibility');
        }
        return true;
    };
    return true;
})())");

// Stronger than what the page says of its elements.
const QString hideAll = QStringLiteral(":is(#a#b#c#d, *) { visibility: hidden !important; }"
                                       ":is(#a#b#c#d, *)::before, :is(#a#b#c#d, *)::after, "
                                       ":is(#a#b#c#d, *)::marker { visibility: inherit !important; }");
// The ground of these two is painted on the whole page, hidden or not.
const QString hideGround = QStringLiteral(":is(#a#b#c#d, html, body) { background: none transparent !important; }");

QRect seenRect(const QImage &image)
{
    int left = image.width();
    int right = -1;
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = image.constScanLine(y);
        const auto isSeen = [row](int x) { return row[qsizetype(x) * 4 + 3] != 0; };
        int first = 0;
        while (first < image.width() && !isSeen(first)) {
            ++first;
        }
        if (first == image.width()) {
            continue;
        }
        int last = image.width() - 1;
        while (!isSeen(last)) {
            --last;
        }
        left = std::min(left, first);
        right = std::max(right, last);
        top = top < 0 ? y : top;
        bottom = y;
    }
    return right < 0 ? QRect() : QRect(QPoint(left, top), QPoint(right, bottom));
}

} // namespace

bool LayeredPage::divide(ZQError *error)
{
    DevToolsPage &devTools = m_page.devTools();
    if (devTools.evaluate(markAll.arg(PageSnapshot::markAttribute), error).isUndefined()) {
        return false;
    }
    const auto answer = devTools.call(QStringLiteral("DOMSnapshot.captureSnapshot"), PageSnapshot::parameters(), error);
    const auto nodes = answer ? PageSnapshot::nodes(*answer, error) : std::nullopt;
    if (nodes) {
        m_division = PageLayers::divide(*nodes, m_rect);
    }
    return nodes.has_value();
}

bool LayeredPage::hide(Hidden hidden, ZQError *error)
{
    const QString rules = hidden == Hidden::All ? hideAll + hideGround : hideAll;
    return !m_page.devTools()
                .evaluate(QStringLiteral("zeltoSheet.replaceSync(`%1`), true").arg(rules), error)
                .isUndefined();
}

bool LayeredPage::show(const QList<int> &marks, bool isShown, ZQError *error)
{
    QJsonArray numbers;
    for (const int mark : marks) {
        numbers.append(mark);
    }
    const QString list = QString::fromLatin1(QJsonDocument(numbers).toJson(QJsonDocument::Compact));
    const QString word = isShown ? QStringLiteral("true") : QStringLiteral("false");
    return !m_page.devTools().evaluate(QStringLiteral("zeltoShow(%1, %2)").arg(list, word), error).isUndefined();
}

bool LayeredPage::setTransparent(ZQError *error)
{
    const QJsonObject nothing{
        {QStringLiteral("r"), 0}, {QStringLiteral("g"), 0}, {QStringLiteral("b"), 0}, {QStringLiteral("a"), 0}};
    return m_page.devTools()
        .call(QStringLiteral("Emulation.setDefaultBackgroundColorOverride"), {{QStringLiteral("color"), nothing}},
              error)
        .has_value();
}

std::optional<ZQScreenshotPSDLayer> LayeredPage::ground(ZQError *error)
{
    if (!hide(Hidden::AllButGround, error) || !show(m_division.ground, true, error)) {
        return std::nullopt;
    }
    const auto picture = m_page.picture(m_rect, error);
    if (!picture || !show(m_division.ground, false, error)) {
        return std::nullopt;
    }
    return ZQScreenshotPSDLayer{{}, 0, zqLocalized("Background"), ZQBitmap(*picture)};
}

std::optional<ZQScreenshotPSDLayer> LayeredPage::layer(const PageLayers::Layer &layer, ZQError *error)
{
    if (!show(layer.marks, true, error)) {
        return std::nullopt;
    }
    const auto picture = m_page.picture(layer.bounds, error);
    if (!picture || !show(layer.marks, false, error)) {
        return std::nullopt;
    }
    const QRect seen = seenRect(*picture);
    const QPoint offset = (layer.bounds.topLeft() - m_rect.topLeft()) * m_page.scale() + seen.topLeft();
    return ZQScreenshotPSDLayer{offset, double(layer.zIndex), layer.name,
                                seen.isEmpty() ? ZQBitmap() : ZQBitmap(picture->copy(seen))};
}

bool LayeredPage::photograph(const std::function<bool(const ZQScreenshotPSDLayer &layer)> &take, ZQError *error)
{
    {
        const auto ground = this->ground(error);
        if (!ground || !take(*ground)) {
            return false;
        }
    }
    if (!hide(Hidden::All, error) || !setTransparent(error)) {
        return false;
    }
    for (const PageLayers::Layer &planned : std::as_const(m_division.layers)) {
        const auto photographed = layer(planned, error);
        if (!photographed || !take(*photographed)) {
            return false;
        }
    }
    return true;
}
