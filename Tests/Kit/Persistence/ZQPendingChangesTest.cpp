#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

// Fetches and counts of a context with unsaved changes.

namespace {

using Nodes = QList<ZQRef<TestNode>>;

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

template <class T>
ZQRef<T> oneOf(const QList<ZQRef<T>> &objects)
{
    return objects.isEmpty() ? ZQRef<T>() : objects.at(*rc::gen::inRange(0, int(objects.size())));
}

// What a test holds on to; random parts of it are let go, so that the context does not have everything in memory.
struct World
{
    QList<ZQRef<TestTag>> tags;
    Nodes nodes;
    QList<ZQRef<TestNote>> notes;

    void load(ZQManagedObjectContext &context)
    {
        const auto allOf = [&context](const QString &entity) {
            return context.executeFetchRequest({.entityName = entity}).value_or(QList<ZQRef<ZQManagedObject>>());
        };
        *this = {};
        for (const auto &object : allOf(TestTag::entityName())) {
            tags.append(zqCast<TestTag>(object));
        }
        for (const auto &object : allOf(TestNode::entityName())) {
            nodes.append(zqCast<TestNode>(object));
        }
        for (const auto &object : allOf(TestNote::entityName())) {
            notes.append(zqCast<TestNote>(object));
        }
    }
    void letSomeGo()
    {
        const auto some = [](const auto &) { return *rc::gen::arbitrary<bool>(); };
        tags.removeIf(some);
        nodes.removeIf(some);
        notes.removeIf(some);
    }
};

void insertSomething(ZQManagedObjectContext &context, World &world)
{
    static const std::vector<QString> titles = {{}, text("a"), text("b"), text("c")};
    ZQRef<TestNode> node;
    if (*rc::gen::arbitrary<bool>()) {
        const auto document = context.insertNewObject<TestDocument>();
        if (const auto tag = oneOf(world.tags)) {
            document->addTag(tag.get());
        }
        node = document;
    } else {
        node = context.insertNewObject<TestFolder>();
    }
    node->setTitle(*rc::gen::elementOf(titles));
    node->setFlag(*rc::gen::arbitrary<bool>());
    node->setLarge(*rc::gen::inRange(0, 4));
    if (*rc::gen::inRange(0, 3) > 0) {
        node->setParent(oneOf(world.nodes).get());
    }
    if (*rc::gen::arbitrary<bool>()) {
        const auto note = context.insertNewObject<TestNote>();
        note->setText(*rc::gen::elementOf(titles));
        note->setNode(node.get());
        world.notes.append(note);
    }
    if (*rc::gen::inRange(0, 3) == 0) {
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(text("t") + QString::number(*rc::gen::inRange(0, 3)));
        tag->setWeight(*rc::gen::inRange(0, 3));
        world.tags.append(tag);
    }
    world.nodes.append(node);
}

void changeSomething(ZQManagedObjectContext &context, World &world)
{
    const auto node = oneOf(world.nodes);
    const auto tag = oneOf(world.tags);
    const auto note = oneOf(world.notes);
    const auto document = zqCast<TestDocument>(node);
    const auto isUsable = [](const auto &object) { return object && object->managedObjectContext(); };
    switch (*rc::gen::inRange(0, 9)) {
    case 0:
        insertSomething(context, world);
        break;
    case 1:
        context.deleteObject(node.get());
        break;
    case 2:
        context.deleteObject(tag.get());
        break;
    case 3:
        context.deleteObject(note.get());
        break;
    case 4:
        if (isUsable(node)) {
            node->setFlag(!node->flag());
            node->setLarge(*rc::gen::inRange(0, 4));
        }
        break;
    case 5:
        if (isUsable(node) && !node->isDeleted()) {
            node->setParent(oneOf(world.nodes).get());
        }
        break;
    case 6:
        if (isUsable(document) && isUsable(tag)) {
            *rc::gen::arbitrary<bool>() ? document->addTag(tag.get()) : document->removeTag(tag.get());
        }
        break;
    case 7:
        if (isUsable(tag)) {
            tag->setWeight(*rc::gen::inRange(0, 3));
        }
        break;
    default:
        if (isUsable(note) && !note->isDeleted()) {
            note->setText(text("c"));
            note->setNode(oneOf(world.nodes).get());
        }
        break;
    }
}

ZQPredicate onePredicate(const QString &entity, const World &world)
{
    const auto id = [](const auto &object) { return object ? QVariant::fromValue(object->objectID()) : QVariant(); };
    const QVariant node = id(oneOf(world.nodes));
    const QVariant tag = id(oneOf(world.tags));
    using Cases = std::vector<std::pair<const char *, QVariantList>>;
    const Cases ofNodes = {
        {"TRUEPREDICATE", {}},
        {"flag == YES AND large > 1", {}},
        {"parent == %@", {node}},
        {"parent == %@ AND parent.flag == YES", {node}},
        {"parent.parent.large >= 2 OR title == 'a'", {}},
        {"children.@count > 0", {}},
        {"ANY children.flag == NO", {}},
        {"ALL children.large > 1 AND flag == YES", {}},
        {"NONE children.notes.text == 'c'", {}},
        {"parent.notes.@count == 1", {}},
        {"ANY notes.text == 'a' AND NOT parent.title == 'b'", {}},
        {"SELF == %@ OR parent.parent == %@", {node, node}},
        {"ANY parent.children.large == large", {}},
    };
    const Cases ofDocuments = {
        {"ANY tags == %@ AND flag == YES", {tag}},
        {"NONE tags == %@", {tag}},
        {"tags.@count >= 1 AND parent.flag == YES", {}},
        {"ANY tags.weight == 1", {}},
        {"ALL tags.weight > 0 OR ANY tags.documents.flag == NO", {}},
        {"ANY tags.documents.parent.large == 3", {}},
    };
    const Cases ofNotes = {
        {"node.flag == YES", {}},
        {"node == %@", {node}},
        {"node.parent.flag == YES AND text != nil", {}},
        {"ANY node.children.title == 'a'", {}},
    };
    Cases cases = entity == TestNote::entityName() ? ofNotes : ofNodes;
    if (entity == TestDocument::entityName()) {
        cases.insert(cases.end(), ofDocuments.begin(), ofDocuments.end());
    }
    const auto &[format, arguments] = cases.at(size_t(*rc::gen::inRange(0, int(cases.size()))));
    return ZQPredicate::predicateWithFormat(text(format), arguments);
}

ZQFetchRequest oneRequest(const World &world)
{
    ZQFetchRequest request{*rc::gen::element(TestNode::entityName(), TestDocument::entityName(),
                                             TestFolder::entityName(), TestNote::entityName())};
    request.predicate = onePredicate(request.entityName, world);
    using Keys = std::vector<const char *>;
    const Keys keys = request.entityName == TestNote::entityName()
                          ? Keys{"text", "node.large", "node.parent.title"}
                          : Keys{"title", "large", "parent.large", "parent.parent.title"};
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count) {
        request.sortDescriptors.append({text(keys.at(size_t(*rc::gen::inRange(0, int(keys.size()))))),
                                        *rc::gen::arbitrary<bool>(), ZQSortDescriptor::Comparison::LocalizedStandard});
    }
    request.fetchLimit = *rc::gen::elementOf(std::vector{0, 0, 3});
    request.fetchOffset = *rc::gen::elementOf(std::vector{0, 0, 2});
    return request;
}

// Every row as an object, looked at in memory.
QList<ZQObjectID> slowAnswer(ZQManagedObjectContext &context, const ZQFetchRequest &request)
{
    ZQFetchRequest all{request.entityName};
    all.includesPendingChanges = false;
    auto objects = context.executeFetchRequest(all).value_or(QList<ZQRef<ZQManagedObject>>());
    const ZQEntityDescription *entity = context.model().entity(request.entityName);
    for (const auto &object : context.insertedObjects()) {
        if (object->entity()->isKindOf(entity)) {
            objects.append(object);
        }
    }
    objects.removeIf(
        [&](const auto &object) { return object->isDeleted() || !request.predicate.evaluateWithObject(object.get()); });
    std::sort(objects.begin(), objects.end(), [&](const auto &a, const auto &b) {
        return zqCompareObjects(a.get(), b.get(), request.sortDescriptors) < 0;
    });
    QList<ZQObjectID> ids;
    for (const auto &object : objects.mid(request.fetchOffset)) {
        if (request.fetchLimit == 0 || ids.size() < request.fetchLimit) {
            ids.append(object->objectID());
        }
    }
    return ids;
}

// `count` documents below one folder each, all with one tag and a note.
void fillFolders(ZQManagedObjectContext &context, int folders, int count)
{
    const auto tag = context.insertNewObject<TestTag>();
    tag->setName(text("every"));
    for (int i = 0; i < folders; ++i) {
        const auto folder = context.insertNewObject<TestFolder>();
        folder->setTitle(QString::number(i));
        for (int j = 0; j < count; ++j) {
            const auto document = context.insertNewObject<TestDocument>();
            document->setTitle(QStringLiteral("%1-%2").arg(i).arg(j));
            document->setParent(folder.get());
            document->addTag(tag.get());
            const auto note = context.insertNewObject<TestNote>();
            note->setNode(document.get());
        }
    }
    ASSERT_TRUE(context.save());
}

ZQRef<TestFolder> folderTitled(ZQManagedObjectContext &context, const char *title)
{
    return context
        .fetch<TestFolder>({.entityName = TestFolder::entityName(),
                            .predicate = ZQPredicate::predicateWithFormat(text("title == %@"), {text(title)})})
        .value()
        .first();
}

} // namespace

RC_GTEST_PROP(ZQPendingChanges, CountAsIfEveryRowWereLookedAt, ())
{
    TestStore store;
    {
        ZQManagedObjectContext context(store.coordinator());
        World world;
        for (int count = *rc::gen::inRange(1, 15); count > 0; --count) {
            insertSomething(context, world);
        }
        RC_ASSERT(context.save());
    }
    ZQManagedObjectContext context(store.coordinator());
    World world;
    world.load(context);
    for (int round = 0; round < 3; ++round) {
        world.letSomeGo();
        for (int count = *rc::gen::inRange(1, 5); count > 0; --count) {
            changeSomething(context, world);
        }
        for (int question = 0; question < 4; ++question) {
            const ZQFetchRequest request = oneRequest(world);
            RC_ASSERT(!request.predicate.isNull());
            const auto count = context.countForFetchRequest(request);
            const auto ids = context.fetchObjectIDs(request);
            const auto objects = context.executeFetchRequest(request);
            RC_ASSERT(count && ids && objects);
            QList<ZQObjectID> idsOfObjects;
            for (const auto &object : *objects) {
                idsOfObjects.append(object->objectID());
            }
            const QList<ZQObjectID> expected = slowAnswer(context, request);
            if (*ids != expected || *count != expected.size()) {
                RC_LOG() << request.entityName.toStdString() << ": "
                         << request.predicate.predicateFormat().toStdString();
            }
            RC_ASSERT(*ids == expected);
            RC_ASSERT(idsOfObjects == expected);
            RC_ASSERT(*count == expected.size());
        }
        world.load(context);
    }
}

// However many rows there are, only what changed, and what leads there, is read.
TEST(ZQPendingChanges, CostNothingForRowsThatTheyDoNotConcern)
{
    constexpr int perFolder = 300;
    TestStore store;
    {
        ZQManagedObjectContext context(store.coordinator());
        fillFolders(context, 4, perFolder);
    }
    struct Case
    {
        const char *name;
        std::function<void(ZQManagedObjectContext &)> change;
        ZQFetchRequest request;
        qint64 expected;
        qint64 rows; // beyond the answer
    };
    const auto requestFor = [](const QString &entity, const char *format, const QVariantList &arguments = {}) {
        return ZQFetchRequest{.entityName = entity,
                              .predicate = ZQPredicate::predicateWithFormat(text(format), arguments)};
    };
    const auto insertOne = [](ZQManagedObjectContext &context) { context.insertNewObject<TestDocument>(); };
    const auto hideAll = [](ZQManagedObjectContext &context) {
        const auto folder = folderTitled(context, "1");
        for (const auto &child : folder->children()) {
            zqCast<TestNode>(child)->setFlag(false);
        }
    };
    const auto hideFolder = [](ZQManagedObjectContext &context) { folderTitled(context, "1")->setFlag(false); };
    const auto retitleAll = [](ZQManagedObjectContext &context) {
        for (const auto &child : folderTitled(context, "1")->children()) {
            zqCast<TestNode>(child)->setTitle(text("x"));
        }
    };
    const Case cases[] = {
        {"one new", insertOne, requestFor(TestNote::entityName(), "node.flag == YES AND text == 'none'"), 0, 1},
        {"many hidden, another folder", hideAll,
         requestFor(TestNote::entityName(), "node.parent.title == '2' AND node.flag == YES"), perFolder,
         perFolder + 10},
        {"many hidden, their folder", hideAll,
         requestFor(TestNote::entityName(), "node.parent.title == '1' AND node.flag == YES"), 0, 2 * perFolder},
        {"the folder hidden", hideFolder, requestFor(TestDocument::entityName(), "parent.flag == YES"), 3 * perFolder,
         perFolder + 10},
        {"values nobody asks for", retitleAll,
         requestFor(TestNote::entityName(), "node.flag == YES AND node.children.@count == 0"), 4 * perFolder, 1},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.name);
        ZQManagedObjectContext context(store.coordinator());
        test.change(context);
        const ZQSQLiteConnection *connection = ZQObjectAccess::connection(context);
        const qint64 rows = connection->rowsRead();
        const int uses = connection->preparedUses();
        EXPECT_EQ(context.countForFetchRequest(test.request), test.expected);
        EXPECT_LE(connection->rowsRead() - rows, test.rows);
        EXPECT_LE(connection->preparedUses() - uses, 8);
    }
}
