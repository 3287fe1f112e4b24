#include "Classes/Interface/InfoPanel/PaletteStrip.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/InfoPanel/ColorSwatch.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPaletteFiles.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QMenu>
#include <QPointer>
#include <QSaveFile>

#include <algorithm>

namespace {

constexpr int stripHeight = 22;
constexpr int wholeShare = 255;

QString hexOf(QRgb color)
{
    return QColor(color).name(QColor::HexRgb);
}

QString percentOf(quint8 share)
{
    return QLocale().toString(std::max(1, (share * 100 + wholeShare / 2) / wholeShare));
}

// As the name of a file: titles have no rules.
QString fileNameOf(const QString &title, const QString &extension)
{
    return zqNumberedName(zqSafeName(title, zqLocalized("Untitled")) + u'.' + extension, 0);
}

} // namespace

PaletteStrip::PaletteStrip(UserInteraction &user, QWidget *parent)
    : QWidget(parent), m_user(user), m_row(new QHBoxLayout(this))
{
    setFixedHeight(stripHeight);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(6);
}

void PaletteStrip::clear()
{
    while (QLayoutItem *old = m_row->takeAt(0)) {
        if (QWidget *swatch = old->widget()) {
            swatch->hide();
            swatch->deleteLater(); // its own click may have led here
        }
        delete old;
    }
    m_swatchCount = 0;
}

ColorSwatch *PaletteStrip::addSwatch(const QColor &color, const QString &name)
{
    auto *swatch = new ColorSwatch(color, name, this);
    m_row->addWidget(swatch);
    swatch->show();
    ++m_swatchCount;
    return swatch;
}

void PaletteStrip::showPalette(const ZQPalette &palette, const QString &title)
{
    m_title = title;
    if (m_codes.isEmpty() && palette == m_palette) {
        return;
    }
    clear();
    m_codes.clear();
    m_palette = palette;
    for (const ZQPalette::Color &color : palette.colors) {
        const QString hex = hexOf(color.rgb);
        ColorSwatch *swatch = addSwatch(QColor(color.rgb), hex);
        swatch->setDescription(
            zqFormat(zqLocalized("Search for %@ (%@ %% of the picture). Shift adds it to the search"),
                     {hex, percentOf(color.share)}));
        connect(swatch, &ColorSwatch::chosen, this, [this, hex](bool adds) { Q_EMIT colorChosen(hex, adds); });
        connect(swatch, &ColorSwatch::menuRequested, this, [this, hex](const QPoint &point) { showMenu(hex, point); });
    }
    m_row->addStretch(1);
}

void PaletteStrip::showMainColors(const QList<int> &codes)
{
    if (m_palette.colors.isEmpty() && codes == m_codes) {
        return;
    }
    clear();
    m_palette = {};
    m_codes = codes;
    for (const int code : codes) {
        const QString name = ZQSidebarTag::colorNameForValue(code);
        if (!name.isEmpty()) {
            connect(addSwatch(ZQTheme::swatch(code), name), &ColorSwatch::chosen, this,
                    [this, name] { Q_EMIT mainColorChosen(name); });
        }
    }
    m_row->addStretch(1);
}

void PaletteStrip::showMenu(const QString &hex, const QPoint &globalPoint)
{
    QMenu menu(this);
    menu.addAction(zqFormat(zqLocalized("Copy %@"), {hex}), this,
                   [hex] { QGuiApplication::clipboard()->setText(hex); });
    menu.addSeparator();
    menu.addAction(zqLocalized("Save Palette for Adobe Programs (ASE)…"), this,
                   [this] { save(QStringLiteral("ase"), &zqASEPalette); });
    menu.addAction(zqLocalized("Save Palette for GIMP and Inkscape (GPL)…"), this,
                   [this] { save(QStringLiteral("gpl"), &zqGPLPalette); });
    menu.exec(globalPoint);
}

void PaletteStrip::save(const QString &extension, QByteArray (*fileOf)(const ZQPalette &palette, const QString &name))
{
    const QByteArray contents = fileOf(m_palette, m_title); // another asset may be shown once the dialog is closed
    UserInteraction &user = m_user;
    FileChoice choice;
    choice.title = zqLocalized("Save Palette");
    choice.prompt = zqLocalized("Save");
    choice.suggestedName = fileNameOf(m_title, extension);
    choice.extensions = {extension};
    const auto path = user.chooseFileToSave(choice);
    if (!path) {
        return;
    }
    QSaveFile file(*path); // who chose the name of a file that is there was asked
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.commit();
    if (!isWritten) {
        user.presentError(ZQError::with(
            QStringLiteral("zelto.palette"), 1,
            zqFormat(zqLocalized("The palette cannot be written to “%@”: %@"), {*path, file.errorString()})));
    }
}
