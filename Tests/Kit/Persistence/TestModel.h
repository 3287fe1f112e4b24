#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <thread>

// A small model with every kind of attribute and relationship: nodes (folders and documents in one family) form a tree,
// documents carry tags, and notes die with their node.

struct TestNodeRow
{
    QString title;
    bool flag = false;
    qint16 small = 0;
    qint32 medium = 0;
    qint64 large = 0;
    float ratio = 0;
    double exact = 0;
    QDateTime date;
    QByteArray blob;
    qint64 parent = 0;
    QString path;
    QString author;
};

class TestNode : public ZQManagedObject
{
public:
    static QString entityName() { return QStringLiteral("TestNode"); }
    static std::span<const ZQField> fields()
    {
        static constexpr ZQField table[] = {
            {"title", ZQAttributeType::String, false, offsetof(TestNodeRow, title)},
            {"flag", ZQAttributeType::Boolean, false, offsetof(TestNodeRow, flag)},
            {"small", ZQAttributeType::Integer16, false, offsetof(TestNodeRow, small)},
            {"medium", ZQAttributeType::Integer32, false, offsetof(TestNodeRow, medium)},
            {"large", ZQAttributeType::Integer64, false, offsetof(TestNodeRow, large)},
            {"ratio", ZQAttributeType::Float, false, offsetof(TestNodeRow, ratio)},
            {"exact", ZQAttributeType::Double, false, offsetof(TestNodeRow, exact)},
            {"date", ZQAttributeType::Date, false, offsetof(TestNodeRow, date)},
            {"blob", ZQAttributeType::Binary, false, offsetof(TestNodeRow, blob)},
            {"parent", ZQAttributeType::Integer64, true, offsetof(TestNodeRow, parent)},
            {"path", ZQAttributeType::String, false, offsetof(TestNodeRow, path)},
            {"author", ZQAttributeType::String, false, offsetof(TestNodeRow, author)},
        };
        return table;
    }

    const QString &title() const { return willAccess(), m_row.title; }
    void setTitle(const QString &value) { setField(0, m_row.title, value); }
    bool flag() const { return willAccess(), m_row.flag; }
    void setFlag(bool value) { setField(1, m_row.flag, value); }
    qint16 small() const { return willAccess(), m_row.small; }
    void setSmall(qint16 value) { setField(2, m_row.small, value); }
    qint32 medium() const { return willAccess(), m_row.medium; }
    bool mediumIsNull() const { return isNullField(3); }
    void setMedium(qint32 value) { setField(3, m_row.medium, value); }
    qint64 large() const { return willAccess(), m_row.large; }
    void setLarge(qint64 value) { setField(4, m_row.large, value); }
    float ratio() const { return willAccess(), m_row.ratio; }
    void setRatio(float value) { setField(5, m_row.ratio, value); }
    double exact() const { return willAccess(), m_row.exact; }
    void setExact(double value) { setField(6, m_row.exact, value); }
    const QDateTime &date() const { return willAccess(), m_row.date; }
    void setDate(const QDateTime &value) { setField(7, m_row.date, value); }
    const QByteArray &blob() const { return willAccess(), m_row.blob; }
    void setBlob(const QByteArray &value) { setField(8, m_row.blob, value); }

    ZQRef<TestNode> parent() const { return zqCast<TestNode>(relatedObject(QStringLiteral("parent"))); }
    void setParent(TestNode *value) { setRelatedObject(QStringLiteral("parent"), value); }
    QList<ZQRef<ZQManagedObject>> children() const { return relatedObjects(QStringLiteral("children")); }
    void addChild(TestNode *value) { addRelatedObject(QStringLiteral("children"), value); }
    QList<ZQRef<ZQManagedObject>> notes() const { return relatedObjects(QStringLiteral("notes")); }

protected:
    void *row() override { return &m_row; }
    TestNodeRow m_row;
};

class TestFolder : public TestNode
{
public:
    static QString entityName() { return QStringLiteral("TestFolder"); }
    const QString &path() const { return willAccess(), m_row.path; }
    void setPath(const QString &value) { setField(10, m_row.path, value); }
};

class TestTag;

class TestDocument : public TestNode
{
public:
    static QString entityName() { return QStringLiteral("TestDocument"); }
    const QString &author() const { return willAccess(), m_row.author; }
    void setAuthor(const QString &value) { setField(11, m_row.author, value); }
    QList<ZQRef<ZQManagedObject>> tags() const { return relatedObjects(QStringLiteral("tags")); }
    void addTag(TestTag *value);
    void removeTag(TestTag *value);
};

struct TestTagRow
{
    QString name;
    qint32 weight = 0;
};

class TestTag : public ZQManagedObject
{
public:
    static QString entityName() { return QStringLiteral("TestTag"); }
    static std::span<const ZQField> fields()
    {
        static constexpr ZQField table[] = {
            {"name", ZQAttributeType::String, false, offsetof(TestTagRow, name)},
            {"weight", ZQAttributeType::Integer32, false, offsetof(TestTagRow, weight)},
        };
        return table;
    }
    const QString &name() const { return willAccess(), m_row.name; }
    void setName(const QString &value) { setField(0, m_row.name, value); }
    qint32 weight() const { return willAccess(), m_row.weight; }
    void setWeight(qint32 value) { setField(1, m_row.weight, value); }
    QList<ZQRef<ZQManagedObject>> documents() const { return relatedObjects(QStringLiteral("documents")); }

protected:
    void *row() override { return &m_row; }
    TestTagRow m_row;
};

inline void TestDocument::addTag(TestTag *value)
{
    addRelatedObject(QStringLiteral("tags"), value);
}
inline void TestDocument::removeTag(TestTag *value)
{
    removeRelatedObject(QStringLiteral("tags"), value);
}

struct TestNoteRow
{
    QString text;
    qint64 node = 0;
};

class TestNote : public ZQManagedObject
{
public:
    static QString entityName() { return QStringLiteral("TestNote"); }
    static std::span<const ZQField> fields()
    {
        static constexpr ZQField table[] = {
            {"text", ZQAttributeType::String, false, offsetof(TestNoteRow, text)},
            {"node", ZQAttributeType::Integer64, true, offsetof(TestNoteRow, node)},
        };
        return table;
    }
    const QString &text() const { return willAccess(), m_row.text; }
    void setText(const QString &value) { setField(0, m_row.text, value); }
    ZQRef<TestNode> node() const { return zqCast<TestNode>(relatedObject(QStringLiteral("node"))); }
    void setNode(TestNode *value) { setRelatedObject(QStringLiteral("node"), value); }

protected:
    void *row() override { return &m_row; }
    TestNoteRow m_row;
};

inline const QByteArray testModelJSON = R"JSON({
  "versionIdentifiers": ["Version2"],
  "entities": [
    { "name": "TestNode", "abstract": true,
      "attributes": [
        { "name": "title", "type": "string", "indexed": true },
        { "name": "flag", "type": "boolean", "optional": false, "default": true },
        { "name": "small", "type": "integer16" },
        { "name": "medium", "type": "integer32", "default": 7 },
        { "name": "large", "type": "integer64" },
        { "name": "ratio", "type": "float" },
        { "name": "exact", "type": "double" },
        { "name": "date", "type": "date" },
        { "name": "blob", "type": "binary" } ],
      "relationships": [
        { "name": "parent", "destination": "TestNode", "inverse": "children" },
        { "name": "children", "destination": "TestNode", "inverse": "parent", "toMany": true, "deleteRule": "cascade" },
        { "name": "notes", "destination": "TestNote", "inverse": "node", "toMany": true, "deleteRule": "cascade" } ] },
    { "name": "TestFolder", "parent": "TestNode", "attributes": [ { "name": "path", "type": "string" } ] },
    { "name": "TestDocument", "parent": "TestNode", "attributes": [ { "name": "author", "type": "string" } ],
      "relationships": [ { "name": "tags", "destination": "TestTag", "inverse": "documents", "toMany": true } ] },
    { "name": "TestTag",
      "attributes": [
        { "name": "name", "type": "string", "optional": false, "indexed": true },
        { "name": "weight", "type": "integer32" } ],
      "relationships": [ { "name": "documents", "destination": "TestDocument", "inverse": "tags", "toMany": true } ] },
    { "name": "TestNote",
      "attributes": [ { "name": "text", "type": "string" } ],
      "relationships": [ { "name": "node", "destination": "TestNode", "inverse": "notes" } ] }
  ]
})JSON";

template <class T>
ZQManagedObject *makeTestObject()
{
    return new T;
}

inline void registerTestClasses()
{
    ZQEntityRegistry::registerClass({"TestNode", TestNode::fields(), makeTestObject<TestNode>});
    ZQEntityRegistry::registerClass({"TestFolder", TestNode::fields(), makeTestObject<TestFolder>});
    ZQEntityRegistry::registerClass({"TestDocument", TestNode::fields(), makeTestObject<TestDocument>});
    ZQEntityRegistry::registerClass({"TestTag", TestTag::fields(), makeTestObject<TestTag>});
    ZQEntityRegistry::registerClass({"TestNote", TestNote::fields(), makeTestObject<TestNote>});
}

// A scratch folder with a store of the test model, opened on demand.
class TestStore
{
public:
    explicit TestStore(QByteArray json = testModelJSON)
    {
        registerTestClasses();
        model = ZQManagedObjectModel::modelFromJSON(json, &error);
        path = folder.filePath(QStringLiteral("storedata"));
    }

    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator()
    {
        if (!m_coordinator) {
            m_coordinator = ZQPersistentStoreCoordinator::open(model, path, {}, &error);
        }
        return m_coordinator;
    }
    // Changes the store from another thread, as a background context does, and answers what it saved.
    ZQContextDidSave elsewhere(const std::function<void(ZQManagedObjectContext &)> &change)
    {
        ZQContextDidSave saved;
        std::thread([&] {
            ZQManagedObjectContext other(coordinator());
            const auto token =
                other.observeDidSave([&](const ZQContextDidSave &notification) { saved = notification; });
            change(other);
            ZQError failure;
            EXPECT_TRUE(other.save(&failure)) << qPrintable(failure.localizedDescription());
        }).join();
        return saved;
    }
    // Contexts made from it must be gone before.
    void close() { m_coordinator.reset(); }

    QTemporaryDir folder;
    QString path;
    std::shared_ptr<const ZQManagedObjectModel> model;
    ZQError error;

private:
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
};

inline QByteArray contentOfFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Tags "tag 0 tag 0 …", each with a document.
inline void fillTestTags(TestStore &store, int count)
{
    ZQManagedObjectContext context(store.coordinator());
    for (int i = 0; i < count; ++i) {
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(QStringLiteral("tag %1 ").arg(i).repeated(20));
        tag->setWeight(i);
        const auto document = context.insertNewObject<TestDocument>();
        document->setTitle(QString::number(i));
        document->addTag(tag.get());
    }
    ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
}
