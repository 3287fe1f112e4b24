#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Interface/WindowContext.h"

#include <QHash>
#include <QSet>
#include <QStringList>

// What rows of a list say of their items that takes other tables or the disk: tags and the sizes of files. Read in the
// background for the rows that are shown, and kept for some thousand. Main thread.
class BrowserRowValues : public QObject
{
    Q_OBJECT
public:
    struct Values
    {
        QStringList tags;
        qint64 bytes = 0; // of the file; 0 when it is missing
    };

    explicit BrowserRowValues(WindowContext &window, QObject *parent = nullptr);

    // Asks for what is not known of them, except for what could not be read since `expire`. What was asked before and
    // is not there yet may never come.
    void want(const QList<ZQObjectID> &items);
    const Values *find(const ZQObjectID &item) const; // null while it is not known
    void expire(); // what is known may be wrong: it is asked for anew when it is wanted, and answered until then

Q_SIGNALS:
    void arrived();

private:
    void take(const QHash<ZQObjectID, Values> &read, const QList<ZQObjectID> &asked, quint64 generation);

    QHash<ZQObjectID, Values> m_values;
    QSet<ZQObjectID> m_expired;
    QSet<ZQObjectID> m_asked;
    QSet<ZQObjectID> m_unread; // asked for, and not there or not readable
    quint64 m_generation = 0;  // goes up when what is known may be wrong
    ContentFetcher::Ticket m_ticket;
};
