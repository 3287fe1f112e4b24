#include "Classes/Command/Commands.h"
#include "Classes/Export/LayeredDocument.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>
#include <QJsonObject>

#include <optional>

namespace {

constexpr qsizetype mostParts = 4; // x, y, opacity, and a name that may hold commas

QString part(const QString &text, qsizetype number)
{
    return text.section(u',', number, number).trimmed();
}

// "x,y[,opacity[,name]]". Nothing when it is no such text.
std::optional<LayeredPicture> placement(const QString &text)
{
    const qsizetype parts = qMin(text.count(u',') + 1, mostParts);
    LayeredPicture picture;
    bool isX = false;
    bool isY = false;
    bool isOpacity = true;
    picture.offset = {part(text, 0).toInt(&isX), part(text, 1).toInt(&isY)};
    if (parts > 2 && !part(text, 2).isEmpty()) {
        picture.opacity = part(text, 2).toFloat(&isOpacity);
    }
    if (!isX || !isY || !isOpacity || !(picture.opacity >= 0 && picture.opacity <= 1)) {
        return std::nullopt;
    }
    picture.name = parts == mostParts ? text.section(u',', 3) : QString();
    return picture;
}

// A name of a file may hold "@" itself: what is there as a whole is meant as a whole, and else the first "@" behind
// which a place is said, and before which there is a file.
std::optional<LayeredPicture> layer(const QString &argument, CommandContext &context)
{
    const auto named = [&](LayeredPicture picture, const QString &path) {
        picture.picture = {context.absolutePath(path)};
        if (picture.name.isEmpty()) {
            picture.name = QFileInfo(path).completeBaseName();
        }
        return picture;
    };
    if (QFileInfo(context.absolutePath(argument)).isFile()) {
        return named({}, argument);
    }
    QString file = argument;
    bool isFile = false;
    for (qsizetype at = argument.indexOf(u'@', 1); at > 0; at = argument.indexOf(u'@', at + 1)) {
        const QString before = argument.left(at);
        if (!QFileInfo(context.absolutePath(before)).isFile()) {
            continue;
        }
        if (const auto placed = placement(argument.mid(at + 1))) {
            return named(*placed, before);
        }
        file = before;
        isFile = true;
    }
    context.fail(isFile ? zqFormat(zqLocalized("“%@” says no place: write FILE@X,Y or FILE@X,Y,OPACITY,NAME with whole "
                                               "numbers and an opacity from 0 to 1"),
                                   {argument})
                        : zqFormat(zqLocalized("there is no file “%@”"), {file}));
    return std::nullopt;
}

std::optional<QSize> sizeOf(const QString &text)
{
    const QStringList sides = text.toLower().split(u'x');
    bool isWidth = false;
    bool isHeight = false;
    const QSize size(sides.value(0).toInt(&isWidth), sides.value(1).toInt(&isHeight));
    return sides.size() == 2 && isWidth && isHeight && !size.isEmpty() ? std::optional(size) : std::nullopt;
}

} // namespace

int zqRunPsd(const PsdRequest &request, CommandContext &context)
{
    const auto size = sizeOf(request.size);
    if (!size) {
        return context.fail(zqFormat(zqLocalized("“%@” is no size; write it in pixels as 1920x1080"), {request.size}));
    }
    QList<LayeredPicture> pictures;
    for (const QString &argument : request.layers) {
        const auto picture = layer(argument, context);
        if (!picture) {
            return 2;
        }
        pictures.append(*picture);
    }
    const QString out = context.absolutePath(request.out);
    ZQError error;
    if (!LayeredDocument::write(pictures, *size, out, request.force, {}, &error)) {
        const bool isTaken = error.domain == LayeredDocument::errorDomain &&
                             error.code == LayeredDocument::AlreadyThere && !request.force;
        return context.fail(isTaken ? zqFormat(zqLocalized("%@ With --force it is replaced, if it is a file and none "
                                                           "of the layers."),
                                               {error.localizedDescription()})
                                    : error.localizedDescription());
    }
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("path"), out},
                                      {QStringLiteral("layers"), pictures.size()},
                                      {QStringLiteral("bytes"), QFileInfo(out).size()}});
    } else {
        context.print(out);
    }
    return 0;
}
