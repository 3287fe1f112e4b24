#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <optional>

// What a browser tells of a page's elements (the answer to DOMSnapshot.captureSnapshot), as a list. A value.
class PageSnapshot
{
public:
    // One element, text or generated content, parents before their children.
    struct Node
    {
        int parent = -1;
        int mark = -1; // the element's number, as `markAttribute` says it; -1 for what is none
        bool isElement = false;
        QString name; // of the element, in lower case; "::before" and the like for generated content, empty for text
        QString text; // that is drawn
        QHash<QString, QString> attributes; // id, class, aria-label, alt
        QHash<QString, QString> styles;     // those of `styleNames`; empty where nothing is laid out
        QRectF bounds;                      // on the page; null where nothing is laid out
        int paintOrder = -1;                // of the layer of the browser that it is painted with
        bool isStackingContext = false;
    };

    static inline const QString markAttribute = QStringLiteral("data-zelto-mark");
    static QStringList styleNames(); // to ask for
    static QJsonObject parameters(); // of the command
    // What does not fit together is left out: the answer is a stranger's page told by another program. Of a cancelled
    // thread, and of a page with more than `mostNodes`, there is nothing.
    static constexpr qsizetype mostNodes = 200000;
    static std::optional<QList<Node>> nodes(const QJsonObject &answer, ZQError *error = nullptr);
};
