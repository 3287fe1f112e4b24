#pragma once

#include "Classes/Import/PromiseSource.h"

#include <QFile>
#include <QMimeData>
#include <QUrl>

// A program that promises a file in a drag, as far as one that is dropped on can tell, and does as the test says.
class PromisingProgram
{
public:
    static constexpr const char *format = "XdndDirectSave0";

    QByteArray name = "one.png";
    std::optional<QByteArray> answer = "S";
    std::function<void(const QString &path)> onSave = [](const QString &) {};
    QString saved; // where it was told to save; empty: it was not asked
    QString askedFor;

    PromiseSourceMaker maker()
    {
        return [this](const QString &offered) {
            askedFor = offered;
            return std::make_unique<Source>(*this);
        };
    }
    std::unique_ptr<PromiseSource> source() { return std::make_unique<Source>(*this); }
    // What a drag from it carries; without data, as the promise has none of its own.
    static std::unique_ptr<QMimeData> drag(const QByteArray &offered = format)
    {
        auto data = std::make_unique<QMimeData>();
        data->setData(QString::fromLatin1(offered), QByteArray());
        return data;
    }

private:
    class Source : public PromiseSource
    {
    public:
        explicit Source(PromisingProgram &program) : m_program(program) {}
        QByteArray proposedName() override { return m_program.name; }
        void save(const QByteArray &address) override
        {
            m_program.saved = QUrl::fromEncoded(address, QUrl::StrictMode).toLocalFile();
            m_program.onSave(m_program.saved);
        }
        std::optional<QByteArray> answer() override { return m_program.answer; }

    private:
        PromisingProgram &m_program;
    };
};
