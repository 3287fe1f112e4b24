#pragma once

#include "Classes/Browsing/Index/IndexFlags.h"
#include "Classes/Browsing/Index/IndexKeys.h"
#include "Classes/Browsing/Index/IndexNumbers.h"
#include "Classes/Browsing/Index/IndexPictures.h"
#include "Classes/Browsing/Index/IndexSidebar.h"
#include "Kit/Persistence/ZQRowStream.h"

// The attributes of library items, a column each. Rows are only ever added; those of items that are gone are not
// `present`.
class IndexItems
{
public:
    static const QStringList &properties(); // to be read for each item, in this order

    // Also of an item whose row is there: it gets its new values.
    void append(const ZQRowStream::Row &row);
    // All of other keys, and to be followed by `appendValues`.
    void appendKeys(const IndexItems &other);
    void appendValues(const IndexItems &other); // touches neither keys nor `present`
    // Takes over what `fresh` holds; answers the row of each of its rows.
    std::vector<quint32> take(const IndexItems &fresh);
    void remove(quint32 row) { present.remove(row); }
    // The live folders, once all of the sidebar is known.
    void resolveFolders(const IndexSidebar &sidebar);
    void reserve(size_t rows);
    void shrink();
    size_t bytes() const;
    size_t size() const { return keys.size(); }
    ZQObjectID id(quint32 row) const
    {
        return present.contains(row) ? ZQObjectID{entities[kinds[row]], keys[row]} : ZQObjectID();
    }

    IndexKeys keys;
    ZQRowSet present;
    std::vector<const ZQEntityDescription *> entities; // those that `kinds` are about
    ZQPagedVector<quint8> kinds;
    IndexFlags active;
    IndexFlags managed;
    ZQTextBlocks title;
    ZQTextBlocks foldedTitle;
    ZQTextBlocks foldedNotes;
    ZQDigests digests;
    ZQPagedVector<quint32> extensions; // by position among:
    std::vector<ZQScalar> extensionTexts = {ZQScalar()};
    IndexNumbers<qint32> pixelWidth;
    IndexNumbers<qint32> pixelHeight;
    IndexNumbers<qint64> pixelTotal;
    IndexNumbers<qint16> rating;
    IndexNumbers<qint32> mainColor;
    IndexNumbers<qint64> importDate;
    IndexNumbers<qint64> modificationDate;
    IndexNumbers<qint64> creationDate;
    IndexPictures pictures;
    ZQPagedVector<quint32> folders;   // numbers of the sidebar
    ZQPagedVector<qint64> folderKeys; // of the rows beyond those of `folders`

private:
    quint8 kindOf(const ZQEntityDescription *entity);
    quint32 extensionOf(const ZQScalar &text);
    void appendFrom(const IndexItems &other, size_t row);
    void assignFrom(const IndexItems &other, size_t otherRow, size_t row);

    QHash<QString, quint32> m_extensions;
    // Calls `visit(column, other's)` for each column of numbers, flags or pictures.
    template <class Visit>
    void forEachPlain(const IndexItems &other, const Visit &visit);
    void makeRoom(size_t rows);
};
