#include "Classes/Browsing/Index/IndexItems.h"

#include "Classes/Browsing/Index/IndexText.h"
#include "Kit/Persistence/ZQFoldedText.h"

#include <algorithm>
#include <iterator>

namespace {

enum Property {
    Active,
    Managed,
    Title,
    Notes,
    Extension,
    Digest,
    PixelWidth,
    PixelHeight,
    PixelTotal,
    Rating,
    MainColor,
    ImportDate,
    ModificationDate,
    CreationDate,
    WatchingFolder,
    PictureHash,
    Palette
};

// Null reads as 0 and as an empty text, and nearly nothing is either.
std::optional<qint64> numberOf(const ZQRowStream::Row &row, Property property)
{
    const qint64 number = row.number(property);
    return number == 0 && row.isNull(property) ? std::nullopt : std::optional(number);
}

std::optional<std::string_view> textOf(const ZQRowStream::Row &row, Property property)
{
    const std::string_view text = row.text(property);
    return text.empty() && row.isNull(property) ? std::nullopt : std::optional(text);
}

std::optional<std::string_view> textAt(const ZQTextBlocks &texts, size_t row)
{
    return texts.isNull(row) ? std::nullopt : std::optional(texts.text(row));
}

std::optional<std::string> copyAt(const ZQTextBlocks &texts, size_t row)
{
    return texts.isNull(row) ? std::nullopt : std::optional(std::string(texts.text(row)));
}

} // namespace

const QStringList &IndexItems::properties()
{
    static const QStringList names = {QStringLiteral("active"),
                                      QStringLiteral("managed"),
                                      QStringLiteral("title"),
                                      QStringLiteral("notes"),
                                      QStringLiteral("extension"),
                                      QStringLiteral("SHA1"),
                                      QStringLiteral("pixelWidth"),
                                      QStringLiteral("pixelHeight"),
                                      QStringLiteral("pixelTotal"),
                                      QStringLiteral("rating"),
                                      QStringLiteral("mainColor"),
                                      QStringLiteral("import_date"),
                                      QStringLiteral("modification_date"),
                                      QStringLiteral("creation_date"),
                                      QStringLiteral("watchingFolder"),
                                      QStringLiteral("pictureHash"),
                                      QStringLiteral("palette")};
    return names;
}

template <class Visit>
void IndexItems::forEachPlain(const IndexItems &other, const Visit &visit)
{
    visit(active, other.active);
    visit(managed, other.managed);
    visit(pixelWidth, other.pixelWidth);
    visit(pixelHeight, other.pixelHeight);
    visit(pixelTotal, other.pixelTotal);
    visit(rating, other.rating);
    visit(mainColor, other.mainColor);
    visit(importDate, other.importDate);
    visit(modificationDate, other.modificationDate);
    visit(creationDate, other.creationDate);
    visit(pictures, other.pictures);
}

quint8 IndexItems::kindOf(const ZQEntityDescription *entity)
{
    const auto found = std::find(entities.begin(), entities.end(), entity);
    const auto kind = quint8(found - entities.begin());
    if (found == entities.end()) {
        entities.push_back(entity);
    }
    return kind;
}

quint32 IndexItems::extensionOf(const ZQScalar &text)
{
    const QString *string = std::get_if<QString>(&text);
    if (!string) {
        return 0;
    }
    const auto known = m_extensions.constFind(*string);
    if (known != m_extensions.cend()) {
        return *known;
    }
    const auto position = quint32(extensionTexts.size());
    extensionTexts.push_back(text);
    m_extensions.insert(*string, position);
    return position;
}

void IndexItems::append(const ZQRowStream::Row &row)
{
    std::string exact;
    std::string folded;
    keys.append(row.key);
    present.resize(keys.size());
    present.insert(keys.size() - 1);
    kinds.push_back(kindOf(row.entity));
    active.append(numberOf(row, Active));
    managed.append(numberOf(row, Managed));
    if (const auto text = textOf(row, Title)) {
        title.append(indexExact(*text, exact));
        foldedTitle.append(zqFoldedUTF8(*text, folded));
    } else {
        title.append(std::nullopt);
        foldedTitle.append(std::nullopt);
    }
    const auto notes = textOf(row, Notes);
    foldedNotes.append(notes ? std::optional(zqFoldedUTF8(*notes, folded)) : std::nullopt);
    const auto extension = textOf(row, Extension);
    extensions.push_back(extension ? extensionOf(QString::fromUtf8(extension->data(), qsizetype(extension->size())) +
                                                 QLatin1StringView(""))
                                   : quint32(0));
    digests.append(textOf(row, Digest));
    pixelWidth.append(numberOf(row, PixelWidth));
    pixelHeight.append(numberOf(row, PixelHeight));
    pixelTotal.append(numberOf(row, PixelTotal));
    rating.append(numberOf(row, Rating));
    mainColor.append(numberOf(row, MainColor));
    importDate.append(numberOf(row, ImportDate));
    modificationDate.append(numberOf(row, ModificationDate));
    creationDate.append(numberOf(row, CreationDate));
    pictures.append(IndexPictures::valueOf(row.data(PictureHash), row.data(Palette)));
    folderKeys.push_back(row.number(WatchingFolder));
}

void IndexItems::appendFrom(const IndexItems &other, size_t row)
{
    keys.append(other.keys[row]);
    present.resize(keys.size());
    present.insert(keys.size() - 1);
    kinds.push_back(kindOf(other.entities[other.kinds[row]]));
    title.append(textAt(other.title, row));
    foldedTitle.append(textAt(other.foldedTitle, row));
    foldedNotes.append(textAt(other.foldedNotes, row));
    extensions.push_back(extensionOf(other.extensionTexts[other.extensions[row]]));
}

void IndexItems::appendKeys(const IndexItems &other)
{
    const size_t before = size();
    keys.appendAll(other.keys);
    present.resize(size());
    other.present.forEach([&](size_t row) { present.insert(before + row); });
}

void IndexItems::appendValues(const IndexItems &other)
{
    const auto append = [](auto &to, const auto &from, const auto &changed) {
        to.reserve(to.size() + from.size());
        std::transform(from.begin(), from.end(), std::back_inserter(to), changed);
    };
    std::vector<quint8> ownKinds;
    for (const ZQEntityDescription *entity : other.entities) {
        ownKinds.push_back(kindOf(entity));
    }
    std::vector<quint32> ownExtensions;
    for (const ZQScalar &text : other.extensionTexts) {
        ownExtensions.push_back(extensionOf(text));
    }
    append(kinds, other.kinds, [&](quint8 kind) { return ownKinds[kind]; });
    append(extensions, other.extensions, [&](quint32 extension) { return ownExtensions[extension]; });
    append(folders, other.folders, [](quint32 folder) { return folder; });
    title.appendAll(other.title);
    foldedTitle.appendAll(other.foldedTitle);
    foldedNotes.appendAll(other.foldedNotes);
    digests.appendAll(other.digests);
    forEachPlain(other, [](auto &own, const auto &more) { own.appendAll(more); });
}

void IndexItems::assignFrom(const IndexItems &other, size_t otherRow, size_t row)
{
    present.insert(row);
    kinds[row] = kindOf(other.entities[other.kinds[otherRow]]);
    extensions[row] = extensionOf(other.extensionTexts[other.extensions[otherRow]]);
    forEachPlain(other, [&](auto &own, const auto &more) { own.set(row, more.value(otherRow)); });
    const QString digest = other.digests.string(otherRow);
    const QByteArray bytes = digest.toUtf8();
    digests.set(row, digest.isNull() ? std::nullopt
                                     : std::optional(std::string_view(bytes.constData(), size_t(bytes.size()))));
    folders[row] = other.folders[otherRow];
}

void IndexItems::reserve(size_t rows)
{
    keys.reserve(rows);
    kinds.reserve(rows);
    extensions.reserve(rows);
    folders.reserve(rows);
    digests.reserve(rows);
    pixelWidth.reserve(rows);
    pixelHeight.reserve(rows);
    pixelTotal.reserve(rows);
    rating.reserve(rows);
    mainColor.reserve(rows);
    importDate.reserve(rows);
    modificationDate.reserve(rows);
    creationDate.reserve(rows);
    pictures.reserve(rows);
}

// A vector that grows by itself would take twice the memory for one more item.
void IndexItems::makeRoom(size_t rows)
{
    if (rows > kinds.capacity()) {
        reserve(rows + rows / 16);
    }
}

std::vector<quint32> IndexItems::take(const IndexItems &fresh)
{
    QHash<quint32, std::optional<std::string>> titles;
    QHash<quint32, std::optional<std::string>> folded;
    QHash<quint32, std::optional<std::string>> notes;
    std::vector<quint32> rows;
    makeRoom(size() + fresh.size());
    for (size_t i = 0; i < fresh.size(); ++i) {
        if (const auto known = keys.rowOf(fresh.keys[i])) {
            assignFrom(fresh, i, *known);
            if (textAt(title, *known) != textAt(fresh.title, i)) {
                titles.insert(*known, copyAt(fresh.title, i));
                folded.insert(*known, copyAt(fresh.foldedTitle, i));
            }
            if (textAt(foldedNotes, *known) != textAt(fresh.foldedNotes, i)) {
                notes.insert(*known, copyAt(fresh.foldedNotes, i));
            }
            rows.push_back(*known);
            continue;
        }
        rows.push_back(quint32(size()));
        appendFrom(fresh, i);
        forEachPlain(fresh, [i](auto &own, const auto &more) { own.append(more.value(i)); });
        digests.append(std::nullopt);
        folders.push_back(IndexSidebar::none);
        assignFrom(fresh, i, size() - 1);
    }
    title.replace(titles);
    foldedTitle.replace(folded);
    foldedNotes.replace(notes);
    return rows;
}

void IndexItems::resolveFolders(const IndexSidebar &sidebar)
{
    folders.reserve(size());
    for (const qint64 key : folderKeys) {
        folders.push_back(sidebar.numberOf(key).value_or(IndexSidebar::none));
    }
    ZQPagedVector<qint64>().swap(folderKeys); // an empty list would keep its memory
}

void IndexItems::shrink()
{
    keys.shrink();
    zqShrink(kinds);
    title.shrink();
    foldedTitle.shrink();
    foldedNotes.shrink();
    digests.shrink();
    zqShrink(extensions);
    pixelWidth.shrink();
    pixelHeight.shrink();
    pixelTotal.shrink();
    rating.shrink();
    mainColor.shrink();
    importDate.shrink();
    modificationDate.shrink();
    creationDate.shrink();
    pictures.shrink();
    zqShrink(folders);
}

size_t IndexItems::bytes() const
{
    return keys.bytes() + present.bytes() + kinds.capacity() + active.bytes() + managed.bytes() + title.bytes() +
           foldedTitle.bytes() + foldedNotes.bytes() + digests.bytes() + extensions.capacity() * sizeof(quint32) +
           pixelWidth.bytes() + pixelHeight.bytes() + pixelTotal.bytes() + rating.bytes() + mainColor.bytes() +
           importDate.bytes() + modificationDate.bytes() + creationDate.bytes() + pictures.bytes() +
           folders.capacity() * sizeof(quint32);
}
