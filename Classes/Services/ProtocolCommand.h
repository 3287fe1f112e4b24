#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Foundation/ZQError.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

// A command that came as an address of this application's scheme: "zelto:snap:JSON" or "zelto:import:JSON", the JSON
// percent-encoded. Anybody can write one: a value of this type has been checked, and says what it asks for. Any thread.
struct ProtocolCommand
{
    enum class Kind { Snap, Import };

    static constexpr qsizetype longestURL = 1 << 20;     // UTF-16 units
    static constexpr qsizetype longestAddress = 8192;    // of a page, and of an image that is not in the text itself
    static constexpr qsizetype mostImages = 500;         // of one command
    static constexpr qsizetype longestTitle = 1000;      // what is longer loses its end
    static constexpr int farthestCoordinate = 1'000'000; // points of the desktop, to either side
    static constexpr int frameOffset = 22;               // above what the browser names lies its title bar
    static inline const QString errorDomain = QStringLiteral("zelto.protocol");
    enum Error { TooLong = 1, NotUnderstood, UnknownCommand, BadValue, ForbiddenAddress };

    Kind kind = Kind::Import;
    QRect frame;                 // Snap: of the browser's window; null where it was not told
    ImageDownloadRequest images; // Import; of Snap only `pageUrl`

    QString pageHost() const; // lower case
    // Hosts of images other than the page's own, each once, in their order.
    QStringList otherHosts() const;
    bool isPagePrivate() const; // it lies on this computer or in its own network

    // Takes the spellings that browsers and desktops make of one: slashes behind the scheme or the command's name, a
    // slash at the end, JSON that is encoded not at all, once, or twice. Nothing, with an error that says what is
    // wrong, for what is not clearly a command, names an address that is not of the web, or has a page of the web reach
    // into this computer or its own network.
    static std::optional<ProtocolCommand> fromURL(const QString &url, ZQError *error = nullptr);
};

// The frame where a person can see it: as it is when a part of it lies on a screen, else moved onto the first of them
// and made no larger than that.
QRect zqFrameOnScreens(const QRect &frame, const QList<QRect> &screens);
