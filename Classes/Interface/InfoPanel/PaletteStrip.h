#pragma once

#include "Kit/Imaging/ZQPalette.h"

#include <QWidget>

class ColorSwatch;
class QHBoxLayout;
class UserInteraction;

// The colours of an asset as swatches: its palette, and until that is known its main colour and those of its tags.
// Main thread.
class PaletteStrip : public QWidget
{
    Q_OBJECT
public:
    explicit PaletteStrip(UserInteraction &user, QWidget *parent = nullptr);

    // Of the asset of that title. What is shown already stays, since it may have the focus.
    void showPalette(const ZQPalette &palette, const QString &title);
    void showMainColors(const QList<int> &codes);
    bool isEmpty() const { return m_swatchCount == 0; }

Q_SIGNALS:
    // To be searched, alone or in addition to what is searched.
    void colorChosen(const QString &argument, bool adds);
    void mainColorChosen(const QString &name); // in place of another one

private:
    void clear();
    ColorSwatch *addSwatch(const QColor &color, const QString &name);
    void showMenu(const QString &hex, const QPoint &globalPoint);
    void save(const QString &extension, QByteArray (*fileOf)(const ZQPalette &palette, const QString &name));

    UserInteraction &m_user;
    QHBoxLayout *m_row;
    ZQPalette m_palette;
    QList<int> m_codes;
    QString m_title;
    int m_swatchCount = 0;
};
