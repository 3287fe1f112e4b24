#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

#include <memory>

class ZQOperationQueue;

// How many pages a document has and how large they are on paper, which the library does not keep: read from the file,
// in the background. Main thread.
class DocumentSize : public QObject
{
    Q_OBJECT
public:
    explicit DocumentSize(QObject *parent = nullptr);
    ~DocumentSize() override;

    static bool isDocument(const QString &path); // by its name
    // "3 pages · 210 × 297 mm"; empty while it is not known, and `didRead` tells then.
    QString textFor(const QString &path);

Q_SIGNALS:
    void didRead(const QString &path, const QString &text);

private:
    QString m_path; // last asked for
    QDateTime m_modified;
    QString m_text;
    std::unique_ptr<ZQOperationQueue> m_queue;
};
