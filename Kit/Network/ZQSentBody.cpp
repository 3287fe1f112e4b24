#include "Kit/Network/ZQSentBody.h"

ZQSentBody::ZQSentBody(std::unique_ptr<QIODevice> body, int mostRepeats)
    : m_body(std::move(body)), m_repeatsLeft(mostRepeats)
{
    if (m_body->isOpen()) {
        open(ReadOnly | Unbuffered);
    } else {
        setErrorString(m_body->errorString());
        m_didFail = true;
    }
}

bool ZQSentBody::seek(qint64 position)
{
    if (position < pos() && m_repeatsLeft-- <= 0) {
        return false;
    }
    return QIODevice::seek(position) && m_body->seek(position);
}

// A body's parts end in the middle of what is asked for; sent one by one, each would be a packet of its own.
qint64 ZQSentBody::readData(char *data, qint64 maximum)
{
    qint64 filled = 0;
    while (filled < maximum) {
        const qint64 count = m_body->read(data + filled, maximum - filled);
        if (count > 0) {
            filled += count;
            continue;
        }
        if (filled == 0 && (count < 0 || pos() < size())) {
            setErrorString(m_body->errorString());
            m_didFail = true;
            return -1;
        }
        break; // what fails after a part is told when the rest is read
    }
    return filled;
}
