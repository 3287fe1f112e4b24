#include "Classes/Interface/Sheets/StatisticsSheet.h"

#include "Classes/Browsing/Content/LibraryStatistics.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQStopScope.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>

namespace {
constexpr int closeCode = 1;
}

StatisticsSheet::StatisticsSheet(QWidget *window, std::shared_ptr<ZQPersistentStoreCoordinator> store,
                                 const QString &libraryDirectory)
    : Sheet(window, zqLocalized("Library Statistics")), m_numbers(new QPlainTextEdit(this)), m_state(new QLabel(this)),
      m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("statistics"), 1))
{
    setWidth(520);
    m_numbers->setReadOnly(true);
    m_numbers->setTabChangesFocus(true);
    m_numbers->setAccessibleName(zqLocalized("Numbers of the library"));
    m_numbers->setMinimumHeight(320);
    m_state->setObjectName(QStringLiteral("SmallMuted"));
    m_state->setText(store ? zqLocalized("Counting…") : zqLocalized("The library is not open."));
    content()->addWidget(m_numbers);
    content()->addWidget(m_state);
    addButton(zqLocalized("Close"), closeCode, true);
    if (store) {
        count(store, libraryDirectory, false);
        count(store, libraryDirectory, true);
    }
}

StatisticsSheet::~StatisticsSheet()
{
    m_stop.request_stop();
}

void StatisticsSheet::count(std::shared_ptr<ZQPersistentStoreCoordinator> store, const QString &libraryDirectory,
                            bool withSizes)
{
    m_queue->addOperationWithBlock(
        [self = QPointer(this), store = std::move(store), libraryDirectory, withSizes, stop = m_stop.get_token()] {
            const ZQStopScope scope(stop);
            ZQManagedObjectContext context(store);
            ZQError error;
            const auto numbers = LibraryStatistics(context, libraryDirectory).count(withSizes, &error, stop);
            const QString state = !numbers    ? error.localizedDescription()
                                  : withSizes ? QString()
                                              : zqLocalized("Looking at the sizes of files…");
            zqOnMainThread([self, lines = numbers ? numbers->lines() : QStringList(), state] {
                if (self) {
                    self->showNumbers(lines, state);
                }
            });
        });
}

void StatisticsSheet::showNumbers(const QStringList &lines, const QString &state)
{
    if (!lines.isEmpty()) {
        m_numbers->setPlainText(lines.join(u'\n'));
    }
    m_state->setText(state);
}
