#include "Classes/Browsing/IndexItems.h"

#include "Classes/Browsing/IndexText.h"

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
    WatchingFolder
};

std::optional<qint64> numberOf(const ZQRowStream::Row &row, Property property)
{
    return row.isNull(property) ? std::nullopt : std::optional(row.number(property));
}

std::optional<std::string_view> textOf(const ZQRowStream::Row &row, Property property)
{
    return row.isNull(property) ? std::nullopt : std::optional(row.text(property));
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
                                      QStringLiteral("watchingFolder")};
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
        foldedTitle.append(indexFolded(*text, folded));
    } else {
        title.append(std::nullopt);
        foldedTitle.append(std::nullopt);
    }
    const auto notes = textOf(row, Notes);
    foldedNotes.append(notes ? std::optional(indexFolded(*notes, folded)) : std::nullopt);
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

void IndexItems::appendAll(IndexItems &&other)
{
    for (size_t row = 0; row < other.size(); ++row) {
        appendFrom(other, row);
    }
    forEachPlain(other, [](auto &own, const auto &more) { own.appendAll(more); });
    digests.appendAll(other.digests);
    folderKeys.insert(folderKeys.end(), other.folderKeys.begin(), other.folderKeys.end());
    other = {};
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

// A vector that grows by itself would take twice the memory for one more item.
void IndexItems::makeRoom(size_t rows)
{
    if (rows <= kinds.capacity()) {
        return;
    }
    const size_t room = rows + rows / 16;
    keys.reserve(room);
    kinds.reserve(room);
    extensions.reserve(room);
    folders.reserve(room);
    digests.reserve(room);
    pixelWidth.reserve(room);
    pixelHeight.reserve(room);
    pixelTotal.reserve(room);
    rating.reserve(room);
    mainColor.reserve(room);
    importDate.reserve(room);
    modificationDate.reserve(room);
    creationDate.reserve(room);
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
    folderKeys = {};
}

void IndexItems::shrink()
{
    keys.shrink();
    kinds.shrink_to_fit();
    title.shrink();
    foldedTitle.shrink();
    foldedNotes.shrink();
    digests.shrink();
    extensions.shrink_to_fit();
    pixelWidth.shrink();
    pixelHeight.shrink();
    pixelTotal.shrink();
    rating.shrink();
    mainColor.shrink();
    importDate.shrink();
    modificationDate.shrink();
    creationDate.shrink();
    folders.shrink_to_fit();
}

size_t IndexItems::bytes() const
{
    return keys.bytes() + present.bytes() + kinds.capacity() + active.bytes() + managed.bytes() + title.bytes() +
           foldedTitle.bytes() + foldedNotes.bytes() + digests.bytes() + extensions.capacity() * sizeof(quint32) +
           pixelWidth.bytes() + pixelHeight.bytes() + pixelTotal.bytes() + rating.bytes() + mainColor.bytes() +
           importDate.bytes() + modificationDate.bytes() + creationDate.bytes() + folders.capacity() * sizeof(quint32);
}
