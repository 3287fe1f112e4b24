// Two pictures of one size, by where they differ.

#include "Classes/Interface/Compare/CompareView.h"
#include "Classes/Interface/Detail/DetailPainting.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQAccessible.h"

#include <QLocale>
#include <QStackedWidget>

#include <algorithm>
#include <utility>

namespace {

QString shareText(double share)
{
    constexpr double leastShown = 0.001;
    const double percent = std::max(share, leastShown) * 100;
    const QString text = QLocale().toString(percent, 'f', percent < 10 ? 1 : 0);
    return share < leastShown ? zqFormat(zqLocalized("less than %@ %%"), {text})
                              : zqFormat(zqLocalized("%@ %%"), {text});
}

} // namespace

bool CompareView::canShowDifference() const
{
    return m_panes.size() == 2 && !m_panes.at(0)->canvas().naturalSize().isEmpty() &&
           m_panes.at(0)->canvas().naturalSize() == m_panes.at(1)->canvas().naturalSize();
}

void CompareView::setShowsDifference(bool shows)
{
    const bool showsNow = shows && canShowDifference();
    if (showsNow != m_showsDifference) {
        m_showsDifference = showsNow;
        m_pages->setCurrentWidget(showsNow ? static_cast<QWidget *>(m_difference) : m_grid);
        if (showsNow) {
            m_difference->setFocus(Qt::OtherFocusReason);
            updateDifference();
        } else {
            ComparePane *pane = currentPane();
            pane ? pane->canvas().setFocus(Qt::OtherFocusReason) : setFocus(Qt::OtherFocusReason);
        }
    }
    updateTexts();
}

void CompareView::updateDifference()
{
    if (!m_showsDifference) {
        return;
    }
    if (!canShowDifference()) {
        setShowsDifference(false);
        return;
    }
    DetailDocument &first = m_panes.at(0)->canvas().document();
    DetailDocument &second = m_panes.at(1)->canvas().document();
    for (DetailDocument *document : {&first, &second}) {
        using State = DetailDocument::State;
        if (document->state() == State::Missing || document->state() == State::Failed) {
            m_difference->showImage({}, DetailPainting::messageOf(*document));
            return;
        }
        if (!document->isWhole()) {
            document->readWhole();
        }
    }
    if (first.isWhole() && second.isWhole()) {
        startDifference(first.image(), second.image());
    } else {
        m_differenceOf = {};
        m_difference->showImage({}, zqLocalized("Comparing…"));
    }
}

void CompareView::startDifference(const QImage &first, const QImage &second)
{
    const std::pair<qint64, qint64> pictures(first.cacheKey(), second.cacheKey());
    if (pictures == std::exchange(m_differenceOf, pictures)) {
        return;
    }
    m_differenceText.clear();
    m_difference->showImage({}, zqLocalized("Comparing…"));
    m_queue->cancelAllOperations();
    const quint64 generation = ++m_generation;
    m_queue->addOperationWithBlock([self = QPointer(this), generation, first, second] {
        const ZQPictureDifference difference = ZQPictureDifference::of(first, second);
        zqOnMainThread([self, generation, difference] {
            if (self && self->m_generation == generation) {
                self->showDifference(difference);
            }
        });
    });
}

void CompareView::showDifference(const ZQPictureDifference &difference)
{
    if (difference.isNull()) {
        m_difference->showImage({}, zqLocalized("The difference of these two cannot be shown."));
    } else if (difference.greatest == 0) {
        // What is very large is compared smaller than it is.
        const QSize size = difference.image.size();
        m_differenceText = canShowDifference() && size.width() < m_panes.at(0)->canvas().naturalSize().width()
                               ? zqFormat(zqLocalized("No difference is seen at %ld × %ld pixels."),
                                          {qint64(size.width()), qint64(size.height())})
                               : zqLocalized("The two are the same in every pixel.");
        m_difference->showImage(difference.image, m_differenceText);
    } else {
        m_differenceText = zqFormat(zqLocalized("%@ of the pixels differ, by up to %d of 255"),
                                    {shareText(difference.share), difference.greatest});
        m_difference->showImage(difference.image, {});
    }
    m_difference->setAccessibleDescription(m_differenceText);
    zqAnnounce(m_difference, m_differenceText);
    updateTexts();
}
