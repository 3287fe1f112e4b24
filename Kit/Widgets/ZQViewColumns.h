#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

struct ZQViewColumn
{
    QString identifier;
    QString title; // localised
    int width = 80;
    int minimumWidth = 40;
    bool isSortable = false;
    bool isShown = true;
};

// The columns of a list: which there are, which are shown and how wide. The first is the title, always there, beside
// the picture; it takes what the others leave. Where there is too little room, they shrink down to their least widths,
// and then the last ones give way.
//
// Lengths are device-independent pixels.
class ZQViewColumns
{
public:
    static constexpr int pictureWidth = 36;
    static constexpr int pictureGap = 18;
    static constexpr int gap = 10;
    static constexpr int leastTitleWidth = 120;

    explicit ZQViewColumns(QList<ZQViewColumn> all = {}) : m_all(std::move(all)) {}

    const QList<ZQViewColumn> &all() const { return m_all; }
    bool isShown(const QString &identifier) const;
    bool setShown(const QString &identifier, bool isShown); // false when that changes nothing

    struct Place
    {
        qsizetype column = 0; // in `all`
        int left = 0;
        int width = 0;
        friend bool operator==(const Place &, const Place &) = default;
    };
    QList<Place> places(int width) const; // those with room in a row as wide as that
    // Moves the line between a place and the next one: what one wins, the other loses, down to its least width.
    // False when nothing moves.
    bool moveBoundary(qsizetype place, int by, int width);

    // What a person chose, to be kept. What makes no sense in a state is left as it was.
    QVariantMap state() const;
    void restore(const QVariantMap &state);

private:
    QList<ZQViewColumn> m_all;
};
