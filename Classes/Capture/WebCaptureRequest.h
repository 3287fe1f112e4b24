#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHostAddress>
#include <QImage>
#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

// What of a web page is to be captured, and how.
struct WebCaptureRequest
{
    static constexpr int leastWidth = 200;
    static constexpr int mostWidth = 4000;
    static constexpr int mostHeight = 15000; // pixels of the picture: a longer page is cut

    QString url;
    int width = 1280;     // of the browser's window, in points
    int scale = 1;        // pixels a point: 1 or 2
    bool layered = false; // a PSD document with the visible elements as layers; else a PNG
    bool visible = false; // what the window shows at first; else the whole page
    int previewWidth = 0; // pixels of a small picture of it; 0: none is wanted
    // A page asked for it and no person typed it: it must not lead farther into this computer or its network than its
    // own address says.
    bool isFromPage = false;
    std::function<QList<QHostAddress>(const QString &host)> lookUp = {}; // for that; empty: asks the system
    bool mayReadFiles = false; // addresses of files ("file:") too, where the person wrote it

    // The address that a person means by what they typed: "example.com" is "https://example.com". Empty, with an error,
    // for what is none that can be captured.
    static QString addressFor(const QString &typed, bool mayReadFiles, ZQError *error = nullptr);
};

struct WebCaptureResult
{
    QString file;    // finished, in a folder of its own in the temporary area; empty: there is `error`
    QString pageURL; // where the page ended up
    QString title;   // of the page, or its server's name
    int status = 0;  // that the page's server answered with, as 200 or 404; 0: none did
    QSize size;      // pixels
    qsizetype layers = 0;
    QStringList notes; // what is not as it might be expected, for the person
    QImage preview;
    ZQError error;
};
