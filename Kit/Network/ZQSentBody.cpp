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

qint64 ZQSentBody::readData(char *data, qint64 maximum)
{
    const qint64 count = m_body->read(data, maximum);
    if (count < 0 || (count == 0 && maximum > 0 && pos() < size())) {
        setErrorString(m_body->errorString());
        m_didFail = true;
        return -1;
    }
    return count;
}
