#pragma once

#include "Classes/Interface/Sheets/Sheet.h"

#include <memory>
#include <stop_token>

class QLabel;
class QPlainTextEdit;
class ZQOperationQueue;
class ZQPersistentStoreCoordinator;

// What is in the library, in numbers, to be read and copied. They are counted beside the window: what the rows say
// comes first, the sizes of files when they are known. Closing it ends that. Main thread.
class StatisticsSheet : public Sheet
{
    Q_OBJECT
public:
    StatisticsSheet(QWidget *window, std::shared_ptr<ZQPersistentStoreCoordinator> store,
                    const QString &libraryDirectory);
    ~StatisticsSheet() override;

private:
    void count(std::shared_ptr<ZQPersistentStoreCoordinator> store, const QString &libraryDirectory, bool withSizes);
    void showNumbers(const QStringList &lines, const QString &state);

    QPlainTextEdit *m_numbers;
    QLabel *m_state;
    std::stop_source m_stop;
    std::unique_ptr<ZQOperationQueue> m_queue; // last: it goes first, and waits for what runs
};
