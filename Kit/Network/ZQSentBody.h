#pragma once

#include <QIODevice>

#include <memory>

// The body of a request while it is sent: knows whether reading it failed, and may be begun again only as often as is
// allowed. The network library sends a request again by itself when its connection breaks, which is right for one that
// was kept open and closed meanwhile, and for others would have the server do twice what it may have done. Of the
// network's thread.
class ZQSentBody : public QIODevice
{
public:
    ZQSentBody(std::unique_ptr<QIODevice> body, int mostRepeats);

    bool didFail() const { return m_didFail; } // `errorString` says why
    qint64 size() const override { return m_body->size(); }
    bool isSequential() const override { return false; }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char *data, qint64 maximum) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const std::unique_ptr<QIODevice> m_body;
    int m_repeatsLeft;
    bool m_didFail = false;
};
