#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

// JSON that a person wrote and others may have tampered with: keeps the order of members and the line of each value, so
// that an error can say where; strict (RFC 8259), without names that appear twice, without NUL, and not nested deeper
// than needed. A value; any thread.
struct LinedJSON
{
    enum class Type { Null, Bool, Number, String, List, Object };

    Type type = Type::Null;
    int line = 0; // the first is 1
    QString text; // of a string; of a number as it was written; "true" or "false"
    QList<LinedJSON> elements;
    QList<std::pair<QString, LinedJSON>> members;

    const LinedJSON *member(const QString &name) const; // null: there is none

    // Nothing, with an error that names the line, for what is no JSON.
    static std::optional<LinedJSON> from(const QByteArray &UTF8, ZQError *error = nullptr);
    static ZQError problem(int line, const QString &description); // "Line 3: …"
    static inline const QString errorDomain = QStringLiteral("zelto.sharing.description");
    static constexpr int mostLevels = 16;
};
