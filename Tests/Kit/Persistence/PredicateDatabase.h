#pragma once

#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQSortDescriptor.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <sqlite3.h>

#include <map>

// Documents of the test model twice: as rows of a database in memory, and as nested maps for evaluation.
class PredicateDatabase
{
public:
    struct Node
    {
        QVariantMap values;
        qint64 parent = 0;
        QList<qint64> tags;
        QList<qint64> notes;
    };

    PredicateDatabase();
    ~PredicateDatabase() { sqlite3_close(m_connection); }
    PredicateDatabase(const PredicateDatabase &) = delete;
    PredicateDatabase &operator=(const PredicateDatabase &) = delete;

    const ZQEntityDescription *document() const { return m_model->entity(QStringLiteral("TestDocument")); }
    const ZQEntityDescription *tag() const { return m_model->entity(QStringLiteral("TestTag")); }

    void addNode(qint64 key, const Node &node);
    void addTag(qint64 key, const QVariant &name, const QVariant &weight);
    void addNote(qint64 key, const QVariant &text, qint64 node);

    // The first column of each row.
    QVariantList query(const QString &sql, const QVariantList &bindings = {});
    std::optional<QVariantList> keysMatching(const ZQPredicate &predicate, ZQError *error = nullptr);
    // The predicate as SQL for every document, in the order of keys: 0 or 1, or an invalid variant for NULL.
    QVariantList results(const ZQPredicate &predicate, ZQError *error = nullptr);
    QString plan(const ZQPredicate &predicate);

    QVariantMap mapOf(qint64 key, int depth = 2) const;
    QList<qint64> keys() const;

private:
    void execute(const QString &sql, const QVariantList &bindings = {}) { query(sql, bindings); }

    std::shared_ptr<const ZQManagedObjectModel> m_model;
    sqlite3 *m_connection = nullptr;
    std::map<qint64, Node> m_nodes;
    std::map<qint64, QVariantMap> m_tags;
    std::map<qint64, QVariantMap> m_notes;
};
