#include "Classes/Browsing/Content/DetailDocument.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace {

constexpr int largestSide = 8192;
constexpr int largestDrawnSide = 6144; // a drawing of that side takes 150 MB at most
constexpr qint64 mostFrameBytes = qint64(256) << 20;
constexpr int smallestFrameSide = 64;
constexpr int mostFrames = int(mostFrameBytes / (smallestFrameSide * smallestFrameSide * 4)); // of an animation

int longerSide(QSizeF size)
{
    return int(std::max(size.width(), size.height()));
}

} // namespace

struct DetailDocument::Answer
{
    QString drawn;
    std::optional<ZQImageProperties> properties;
    QImage image;
    QString reason;
};

DetailDocument::DetailDocument(QObject *parent)
    : QObject(parent), m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("detail"), 1))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &DetailDocument::showNextFrame);
    m_redraw.setSingleShot(true);
    m_redraw.setInterval(120);
    connect(&m_redraw, &QTimer::timeout, this, &DetailDocument::drawPage);
}

DetailDocument::~DetailDocument()
{
    m_queue->cancelAllOperations();
}

void DetailDocument::open(const Source &source, int canvasSide)
{
    ++m_generation;
    m_queue->cancelAllOperations();
    m_timer.stop();
    m_redraw.stop();
    m_source = source;
    m_image = source.standIn;
    m_natural = source.pixelSize.isEmpty() ? QSizeF(source.standIn.size()) : QSizeF(source.pixelSize);
    m_isVector = false;
    m_pageCount = 1;
    m_page = 0;
    m_drawnSide = 0;
    m_wantedSide = canvasSide;
    m_durations.clear();
    m_frames.clear();
    m_reason.clear();
    m_drawn = source.path;
    m_state = source.path.isEmpty() || !QFileInfo::exists(source.path) ? State::Missing : State::Loading;
    if (m_state == State::Loading) {
        const int wanted = source.mostPixels > 0 ? canvasSide : std::max(longerSide(m_natural), canvasSide);
        readFile(std::clamp(wanted, 1, largestSide));
    }
    Q_EMIT changed();
}

const QImage &DetailDocument::image() const
{
    return m_page < m_frames.size() ? m_frames.at(m_page) : m_image;
}

QSizeF DetailDocument::naturalSize() const
{
    return m_natural;
}

double DetailDocument::sharpestScale() const
{
    return m_isVector && longerSide(m_natural) > 0 ? double(largestDrawnSide) / longerSide(m_natural) : 0;
}

// In which it has no more pixels than it may.
int DetailDocument::largestSideOf(QSizeF natural) const
{
    const int most = m_isVector ? largestDrawnSide : std::clamp(longerSide(natural), 1, largestSide);
    const double pixels = natural.width() * natural.height();
    if (m_source.mostPixels <= 0 || pixels <= 0) {
        return m_isVector ? largestDrawnSide : largestSide;
    }
    const double side = longerSide(natural) * std::sqrt(double(m_source.mostPixels) / pixels);
    return int(std::clamp(side, 1.0, double(most)));
}

bool DetailDocument::isWhole() const
{
    return m_state == State::Shown && (m_source.mostPixels <= 0 || m_drawnSide >= largestSideOf(m_natural));
}

void DetailDocument::readWhole()
{
    setWantedSide(largestSideOf(m_natural));
}

void DetailDocument::readFile(int side)
{
    const QPointer<DetailDocument> self(this);
    m_queue->addOperationWithBlock([self, generation = m_generation, source = m_source, side] {
        Answer answer;
        answer.properties = ZQImageSource::propertiesOfFile(source.path);
        const bool drawsItself = answer.properties || source.picture.isEmpty();
        answer.drawn = drawsItself ? source.path : source.picture;
        ZQError error;
        answer.image = ZQPreviewService::previewOfFile(answer.drawn, QSize(side, side), &error).image();
        answer.reason = error.localizedDescription();
        zqOnMainThread([self, generation, answer] {
            if (self && self->m_generation == generation) {
                self->take(answer);
            }
        });
    });
}

void DetailDocument::take(const Answer &answer)
{
    m_drawn = answer.drawn;
    m_state = answer.image.isNull() ? State::Failed : State::Shown;
    m_reason = answer.reason;
    if (m_state == State::Shown) {
        m_image = answer.image;
        m_drawnSide = longerSide(m_image.size());
        if (m_natural.isEmpty() || !m_source.pixelSize.isValid() || m_source.pixelSize.isEmpty()) {
            m_natural = answer.properties ? QSizeF(answer.properties->pixelWidth, answer.properties->pixelHeight)
                                          : QSizeF(m_image.size());
        }
        if (answer.properties) {
            m_isVector = answer.properties->isVector;
            m_pageCount = answer.properties->frameCount;
            m_durations =
                m_pageCount > 1 && m_source.mostPixels <= 0 ? answer.properties->frameDurations : QList<int>();
        }
        if (isAnimation()) {
            m_pageCount = std::min(m_pageCount, mostFrames);
            readFrames(longerSide(m_image.size()));
            m_timer.start(m_durations.first());
        } else {
            setWantedSide(m_wantedSide);
        }
    }
    Q_EMIT changed();
}

void DetailDocument::setWantedSide(int pixels)
{
    m_wantedSide = pixels;
    const bool isReadAgain = m_isVector || m_source.mostPixels > 0;
    if (isReadAgain && m_state != State::Loading && std::min(pixels, largestSideOf(m_natural)) > m_drawnSide) {
        m_redraw.start();
    }
}

void DetailDocument::setPage(int page)
{
    const int wanted = std::clamp(page, 0, m_pageCount - 1);
    if (wanted == m_page) {
        return;
    }
    m_page = wanted;
    if (!isAnimation()) {
        drawPage();
    }
    Q_EMIT changed();
}

// The page that is asked for last is the one that is drawn.
void DetailDocument::drawPage()
{
    m_queue->cancelAllOperations();
    const int most = largestSideOf(m_natural);
    // Twice what is wanted: each step of a zoom would read it anew.
    const int amongSeveral = m_wantedSide > m_drawnSide ? 2 * m_wantedSide : m_drawnSide;
    const int least = m_isVector ? 1 : m_source.mostPixels > 0 ? amongSeveral : most;
    const int side = std::clamp(std::max(m_wantedSide, least), 1, most);
    const QPointer<DetailDocument> self(this);
    m_queue->addOperationWithBlock([self, generation = m_generation, path = m_drawn, side, page = m_page] {
        ZQError error;
        const QImage image = ZQPreviewService::previewOfFile(path, QSize(side, side), &error, page).image();
        zqOnMainThread([self, generation, page, side, image, reason = error.localizedDescription()] {
            if (!self || self->m_generation != generation || self->m_page != page) {
                return;
            }
            self->m_state = image.isNull() ? State::Failed : State::Shown;
            self->m_reason = reason;
            if (!image.isNull()) {
                const bool isOtherShape = std::abs(self->m_image.width() * double(image.height()) -
                                                   self->m_image.height() * double(image.width())) >
                                          0.01 * self->m_image.width() * double(image.height());
                if (self->m_isVector && isOtherShape) { // pages may be of different sizes, in one measure
                    const double longer = std::max(self->m_natural.width(), self->m_natural.height());
                    self->m_natural = QSizeF(image.size()).scaled(longer, longer, Qt::KeepAspectRatio);
                }
                self->m_image = image;
                self->m_drawnSide = side;
            }
            Q_EMIT self->changed();
        });
    });
}

// All frames, in order, no larger than they fit into the memory set aside for them.
void DetailDocument::readFrames(int side)
{
    const QSizeF shape = QSizeF(m_image.size()).scaled(side, side, Qt::KeepAspectRatio);
    const double bytes = shape.width() * shape.height() * 4 * m_pageCount;
    const double shrink = bytes > double(mostFrameBytes) ? std::sqrt(double(mostFrameBytes) / bytes) : 1.0;
    readFrame(0, std::max(smallestFrameSide, int(side * shrink)));
}

// Each asks for the next: what a file says of its frames is not to fill the queue, nor the memory.
void DetailDocument::readFrame(int frame, int side)
{
    const QPointer<DetailDocument> self(this);
    m_queue->addOperationWithBlock([self, generation = m_generation, path = m_drawn, side, frame] {
        const QImage image = ZQImageSource::thumbnailOfFile(path, side, nullptr, frame).image();
        zqOnMainThread([self, generation, image, frame, side] {
            if (!self || self->m_generation != generation) {
                return;
            }
            if (image.isNull()) {
                self->m_pageCount = std::max(1, int(self->m_frames.size())); // what there is goes round
                return;
            }
            self->m_frames.append(image);
            if (frame + 1 < self->m_pageCount) {
                self->readFrame(frame + 1, side);
            }
        });
    });
}

void DetailDocument::setPlaying(bool playing)
{
    if (!isAnimation() || playing == isPlaying()) {
        return;
    }
    playing ? m_timer.start(m_durations.value(m_page, 100)) : m_timer.stop();
    Q_EMIT changed();
}

void DetailDocument::showNextFrame()
{
    const int next = (m_page + 1) % m_pageCount;
    const bool isRead = next < m_frames.size(); // else it waits at the last one that was
    m_page = isRead ? next : m_page;
    m_timer.start(m_durations.value(m_page, 100));
    if (isRead) {
        Q_EMIT changed();
    }
}
