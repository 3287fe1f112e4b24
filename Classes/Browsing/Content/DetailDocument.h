#pragma once

#include <QImage>
#include <QObject>
#include <QTimer>

#include <memory>

class ZQOperationQueue;

// One asset as the detail view shows it, read in the background: a picture, the pages of a document, or the frames of
// an animation. A drawing is drawn anew for the size it is seen at, so that it stays sharp. Main thread.
class DetailDocument : public QObject
{
    Q_OBJECT
public:
    explicit DetailDocument(QObject *parent = nullptr);
    ~DetailDocument() override;

    struct Source
    {
        QString path;    // the asset's file; empty: it is missing
        QString picture; // what stands for a file that is no picture itself
        QSize pixelSize; // as the library knows it; empty: unknown
        QImage standIn;  // shown until the file was read
        // Of one picture among several that are shown at once: it is read no larger than it is seen, with no more
        // pixels than that, and does not move. 0: all of it.
        qint64 mostPixels = 0;
    };
    void open(const Source &source, int canvasSide); // canvasSide: device pixels

    enum class State { Loading, Shown, Missing, Failed };
    State state() const { return m_state; }
    QString reason() const { return m_reason; } // why it failed, for a person
    const QImage &image() const;
    QSizeF naturalSize() const; // pixels at 100 %
    // Whether it is read as large as it is going to be, of what was asked for.
    bool isWhole() const;
    // Has it read as large as it may be.
    void readWhole();
    // Beyond this scale a drawing would need more pixels than are drawn; 0: any.
    double sharpestScale() const;
    // The longer side, in device pixels, at which the picture is seen.
    void setWantedSide(int pixels);

    int pageCount() const { return m_pageCount; } // pages or frames
    int page() const { return m_page; }
    void setPage(int page);
    bool isAnimation() const { return !m_durations.isEmpty(); }
    bool isPlaying() const { return m_timer.isActive(); }
    void setPlaying(bool playing);

Q_SIGNALS:
    void changed();

private:
    struct Answer;
    int largestSideOf(QSizeF natural) const;
    void readFile(int side);
    void take(const Answer &answer);
    void drawPage();
    void readFrames(int side);
    void readFrame(int frame, int side);
    void showNextFrame();

    Source m_source;
    QString m_drawn; // the path that is drawn
    State m_state = State::Loading;
    QString m_reason;
    QImage m_image;
    QSizeF m_natural;
    bool m_isVector = false;
    int m_pageCount = 1;
    int m_page = 0;
    int m_drawnSide = 0; // of `m_image`, when it was read for the size at which it is seen
    int m_wantedSide = 0;
    QList<int> m_durations;
    QList<QImage> m_frames; // those read so far, in order
    QTimer m_timer;         // to the next frame
    QTimer m_redraw;        // once zooming rests
    quint64 m_generation = 0;
    std::unique_ptr<ZQOperationQueue> m_queue;
};
