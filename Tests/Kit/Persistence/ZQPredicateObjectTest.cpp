#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QString oneText()
{
    static const std::vector<QString> texts = {{},        text(""),   text("a"),  text("Á"),
                                               text("ß"), text("SS"), text("10"), text("9")};
    return *rc::gen::elementOf(texts);
}

// A saved tree of documents with tags and notes.
QList<ZQRef<TestDocument>> insertDocuments(ZQManagedObjectContext &context)
{
    QList<ZQRef<TestTag>> tags;
    for (int i = 0; i < 3; ++i) {
        tags.append(context.insertNewObject<TestTag>());
        tags.last()->setName(oneText() + text(""));
        tags.last()->setWeight(i);
    }
    QList<ZQRef<TestDocument>> documents;
    const int count = *rc::gen::inRange(2, 8);
    for (int i = 0; i < count; ++i) {
        const ZQRef<TestDocument> document = context.insertNewObject<TestDocument>();
        document->setTitle(oneText());
        document->setAuthor(oneText());
        document->setFlag(*rc::gen::arbitrary<bool>());
        if (*rc::gen::arbitrary<bool>()) {
            document->setLarge(*rc::gen::inRange(-1, 3));
        }
        document->setRatio(0.5F);
        document->setDate(QDateTime::fromMSecsSinceEpoch(978307200000 + i, Qt::UTC));
        const int parent = *rc::gen::inRange(-1, i);
        document->setParent(parent < 0 ? nullptr : documents[parent].get());
        for (const ZQRef<TestTag> &tag : tags) {
            if (*rc::gen::arbitrary<bool>()) {
                document->addTag(tag.get());
            }
        }
        if (*rc::gen::arbitrary<bool>()) {
            const ZQRef<TestNote> note = context.insertNewObject<TestNote>();
            note->setText(oneText());
            note->setNode(document.get());
        }
        documents.append(document);
    }
    return documents;
}

} // namespace

RC_GTEST_PROP(ZQPredicateObject, MatchesTheObjectsThatTheStoreFinds, ())
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const QList<ZQRef<TestDocument>> documents = insertDocuments(context);
    ZQError error;
    RC_ASSERT(context.save(&error));
    const QVariant first = QVariant::fromValue(documents.first()->objectID());
    const QVariant tag = documents.first()->tags().isEmpty()
                             ? QVariant()
                             : QVariant::fromValue(documents.first()->tags().first()->objectID());

    const std::pair<const char *, QVariantList> cases[] = {
        {"title == %@", {text("a")}},
        {"title != nil AND flag == YES", {}},
        {"parent == nil", {}},
        {"parent == %@", {first}},
        {"NOT SELF in %@", {QVariant(QVariantList{first})}},
        {"parent.parent == %@", {first}},
        {"parent.title ==[cd] author", {}},
        {"large >= 0 OR large == nil", {}},
        {"ratio == 0.5 AND date > CAST(0.0015, \"NSDate\")", {}},
        {"ANY tags.name contains[cd] %@", {text("ss")}},
        {"ALL tags.name == 'a'", {}},
        {"NONE tags.weight IN {0, 1}", {}},
        {"tags CONTAINS %@", {tag}},
        {"ANY tags == %@ AND NOT flag == YES", {tag}},
        {"NONE tags == %@ OR ANY tags == parent", {tag}},
        {"tags.@count == 0 OR ALL tags.documents.flag == NO", {}},
        {"parent.children.@count > 1", {}},
        {"parent.children.@count == nil", {}},
        {"ALL parent.children.title == nil", {}},
        {"ANY children.notes.text == nil", {}},
        {"ANY parent.children.parent.title LIKE[c] '?*'", {}},
        {"title IN tags.name", {}},
        {"ANY notes.node.title == title", {}},
    };
    for (const auto &[format, arguments] : cases) {
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(text(format), arguments);
        RC_ASSERT(!predicate.isNull());
        const auto found = context.fetchObjectIDs({.entityName = TestDocument::entityName(),
                                                   .predicate = predicate,
                                                   .sortDescriptors = {{text("date")}},
                                                   .includesPendingChanges = false},
                                                  &error);
        RC_ASSERT(found.has_value());
        QList<ZQObjectID> expected;
        for (const ZQRef<TestDocument> &document : documents) {
            if (predicate.evaluateWithObject(document.get())) {
                expected.append(document->objectID());
            }
        }
        if (*found != expected) {
            RC_LOG() << format;
        }
        RC_ASSERT(*found == expected);
        RC_ASSERT(ZQPredicate::predicateWithFormat(predicate.predicateFormat(), predicate.predicateFormatArguments()) ==
                  predicate);
    }
}

RC_GTEST_PROP(ZQSortDescriptorObject, OrdersObjectsAsTheStoreDoes, ())
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    QList<ZQRef<TestDocument>> documents = insertDocuments(context);
    RC_ASSERT(context.save());
    const bool isAscending = *rc::gen::arbitrary<bool>();
    const QList<ZQSortDescriptor> descriptors = {
        {text("parent.title"), isAscending, ZQSortDescriptor::Comparison::LocalizedStandard},
        {text("large"), !isAscending}};
    const auto found =
        context.fetchObjectIDs({.entityName = TestDocument::entityName(), .sortDescriptors = descriptors});
    RC_ASSERT(found.has_value());
    std::sort(documents.begin(), documents.end(),
              [&](const auto &a, const auto &b) { return zqCompareObjects(a.get(), b.get(), descriptors) < 0; });
    QList<ZQObjectID> expected;
    for (const ZQRef<TestDocument> &document : documents) {
        expected.append(document->objectID());
    }
    RC_ASSERT(*found == expected);
}
