#pragma once

#include <QString>

#include <exception>
#include <utility>

// How the PSD writer answers misuse: by a name for programs and a reason, which is a sentence.
class PSDException : public std::exception
{
public:
    PSDException(QString name, QString reason)
        : m_name(std::move(name)), m_reason(std::move(reason)), m_what(m_reason.toUtf8())
    {
    }
    QString name() const { return m_name; }
    QString reason() const { return m_reason; }
    const char *what() const noexcept override { return m_what.constData(); }

    static inline const QString invalidUse = QStringLiteral("InvalidUse"); // called without what is needed for it
    static inline const QString layerOutOfBounds = QStringLiteral("LayerOutOfBounds");
    static inline const QString documentTooLarge = QStringLiteral("DocumentTooLarge"); // for a file that others open

private:
    QString m_name;
    QString m_reason;
    QByteArray m_what;
};
