#pragma once

#include "Classes/Capture/ScreenSource.h"

#include <functional>
#include <utility>

// A desktop of drawn pixels: each tells where it is, so that a capture tells what it took. Answers at once, or when
// `isLate` by `answerNow`.
class FakeScreenSource : public ScreenSource
{
public:
    static QRgb pixelAt(int x, int y) { return qRgb(x % 256, y % 256, 16 * (x / 256) + y / 256); }

    // A single screen of that many pixels.
    explicit FakeScreenSource(const QSize &size = {400, 300}, double scale = 1) { addScreen({{}, size}, scale); }

    void addScreen(const QRect &pixels, double scale = 1)
    {
        const QSize points(int(pixels.width() / scale), int(pixels.height() / scale));
        list.append({QString::number(list.size()), {pixels.topLeft(), points}, pixels, scale});
    }
    void addWindow(quint32 number, int layer, const QRect &bounds, const QString &owner = {})
    {
        windows.append({{QStringLiteral("kCGWindowNumber"), number},
                        {QStringLiteral("kCGWindowLayer"), layer},
                        {QStringLiteral("kCGWindowBounds"), bounds},
                        {QStringLiteral("kCGWindowOwnerName"), owner}});
    }
    static QImage drawn(const QRect &rect)
    {
        QImage image(rect.size(), QImage::Format_RGB32);
        for (int y = 0; y < rect.height(); ++y) {
            for (int x = 0; x < rect.width(); ++x) {
                image.setPixel(x, y, pixelAt(rect.x() + x, rect.y() + y));
            }
        }
        return image;
    }
    void answerNow()
    {
        for (const auto &answer : std::exchange(waiting, {})) {
            answer();
        }
    }

    bool canSeeScreen() const override { return canSee; }
    QList<ScreenInfo> screens() const override { return list; }
    QList<QVariantMap> onScreenWindows() const override
    {
        ++windowLists;
        return windows;
    }
    std::optional<QVariantMap> windowDescription(quint32 number) const override
    {
        for (const QVariantMap &window : windows) {
            if (window.value(QStringLiteral("kCGWindowNumber")).toUInt() == number) {
                return window;
            }
        }
        return std::nullopt;
    }
    void captureRect(const QRect &rect, Taken taken) override { give(drawn(rect), std::move(taken)); }
    void captureWindow(quint32 number, Taken taken) override
    {
        const auto window = windowDescription(number);
        give(window ? drawn(window->value(QStringLiteral("kCGWindowBounds")).toRect()) : QImage(), std::move(taken));
    }
    void captureAllScreens(Taken taken) override
    {
        QRect all;
        for (const ScreenInfo &screen : list) {
            all |= screen.pixelFrame;
        }
        give(drawn(all), std::move(taken));
    }
    void captureInteractively(Taken taken) override { give(interactive, std::move(taken)); }

    bool canSee = true;
    bool isLate = false;
    QList<ScreenInfo> list;
    QList<QVariantMap> windows;
    QImage interactive; // what the desktop's own choice brings
    ZQError error;      // of what has no picture
    mutable int windowLists = 0;

private:
    void give(const QImage &image, Taken taken)
    {
        waiting.append([this, image, taken = std::move(taken)] { taken(image, image.isNull() ? error : ZQError()); });
        if (!isLate) {
            answerNow();
        }
    }

    QList<std::function<void()>> waiting;
};
