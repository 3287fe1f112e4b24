#pragma once

#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <random>

// A small library in which each token finds something, and something else not.
class SearchFixture : public BrowsingFixture
{
protected:
    struct Sample
    {
        const char *title;
        const char *extension;
        int width, height, rating, color;
        const char *modified; // local time
        const char *notes;
        const char *tag; // empty: none
        const char *hash;
    };

    SearchFixture()
    {
        static constexpr Sample samples[] = {
            {"Logo brand", "png", 1200, 800, 5, 1007, "2012-12-25T12:00:00", "final artwork", "Draft", "aa"},
            {"Café", "jpg", 900, 1000, 3, 1003, "2012-12-24T23:59:59.999", "", "summer 2026", "bb"},
            {"seal", "svg", 0, 0, 0, 1001, "2012-12-26T00:00:00", "back\\slash", "logo kit", "aa"},
            {"dot", "gif", 32, 32, 1, 7, "2026-03-01T00:00:00", "50%@", "", "0"},
            {"Photo (1)", "JPG", 512, 300, 0, 1003, "2026-03-31T23:59:59.999", "logo", "small", "0"},
            {"wide", "psd", 1001, 20, 4, 1000, "2025-12-31T23:59:59.999", "", "", "cc"},
        };
        for (const Sample &sample : samples) {
            addSample(sample);
        }
        for (const auto &item : std::as_const(items)) {
            if (item->title() != QStringLiteral("dot")) {
                project->addItem(item.get());
            }
        }
        items[3]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(outer).get());
        items[5]->setManaged(false);
        items[5]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(inner).get());
        library.context().save();
    }

    void addSample(const Sample &sample)
    {
        const auto item = library.addImage(QString::fromUtf8(sample.title), QLatin1StringView(sample.extension));
        item->setPixelWidth(sample.width);
        item->setPixelHeight(sample.height);
        item->setRating(qint16(sample.rating));
        item->setMainColor(sample.color);
        const auto modified = QDateTime::fromString(QLatin1StringView(sample.modified), Qt::ISODateWithMs);
        item->setModification_date(modified.toUTC());
        item->setImport_date(modified.addYears(1).toUTC());
        item->setCreation_date(modified.addYears(-1).toUTC());
        item->setNotes(*sample.notes ? QString::fromUtf8(sample.notes) : QString());
        item->setSHA1(QLatin1StringView(sample.hash));
        if (const QString tag = QLatin1StringView(sample.tag); tag == QStringLiteral("small")) {
            item->addTagsObject(ZQSidebarTag::tagForSize(2002, library.context()).get());
        } else if (!tag.isEmpty()) {
            item->addTagsObject(ZQSidebarTag::getOrCreateTagWithName(tag, library.context()).get());
        }
        items.append(item);
    }

    Item addLiveFolder(const QString &title, const Item &father) { return add<ZQSidebarWatchedFolder>(title, father); }

    ZQFetchRequest rowsOf(ZQListRows rows)
    {
        return rows == ZQListRows::Memberships
                   ? project->contentRequest()
                   : ZQFetchRequest{ZQLibraryBaseItem::entityName(),
                                    ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))};
    }

    // The titles of the rows that are found, the same by the store and in memory.
    QStringList found(const QString &text, ZQListRows rows)
    {
        ZQManagedObjectContext &context = library.context();
        ZQFetchRequest request = rowsOf(rows);
        const auto all = context.executeFetchRequest(request).value_or(QList<ZQRef<ZQManagedObject>>());
        const ZQPredicate predicate =
            SearchManager::predicateForSearchString(text, StoreSearch::context(rows, {request}, context));
        request.predicate = ZQPredicate::andPredicate({request.predicate, predicate});
        ZQError error;
        const auto matches = context.executeFetchRequest(request, &error);
        EXPECT_TRUE(matches) << text.toStdString() << qPrintable(error.localizedDescription());
        QStringList byStore;
        QStringList inMemory;
        for (const auto &row : all) {
            const auto membership = zqCast<ZQProjectItem>(row);
            const QString title = (membership ? membership->item() : zqCast<ZQLibraryBaseItem>(row))->title();
            if (matches && matches->contains(row)) {
                byStore.append(title);
            }
            if (predicate.isNull() || predicate.evaluateWithObject(row.get())) {
                inMemory.append(title);
            }
        }
        EXPECT_EQ(byStore, inMemory) << text.toStdString();
        return byStore;
    }
    // Of all items, each by the first letter of its title; the memberships agree as far as there are any.
    std::string found(const QString &text)
    {
        QString letters;
        QStringList members = found(text, ZQListRows::LibraryItems);
        for (const QString &title : std::as_const(members)) {
            letters += title.front();
        }
        const bool asksForContent = text.contains(QStringLiteral("#dup"));
        members.removeAll(QStringLiteral("dot"));
        QStringList memberships = found(text, ZQListRows::Memberships);
        members.sort();
        memberships.sort();
        if (!asksForContent) {
            EXPECT_EQ(memberships, members) << text.toStdString();
        }
        std::sort(letters.begin(), letters.end());
        return letters.toStdString();
    }
    std::string found(const char *text) { return found(QString::fromUtf8(text)); }

    const Item project = addProject(QStringLiteral("Brand 2026"));
    const Item label = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
    const Item outer = addLiveFolder(QStringLiteral("Outer fold"), label);
    const Item inner = addLiveFolder(QStringLiteral("Inner"), outer);
    QList<ZQRef<ZQLibraryImage>> items;
};
