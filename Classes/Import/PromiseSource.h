#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

// The program that something was dragged from, where it promises to write a file that does not exist yet: it proposes a
// name, is told where to write, and says how that went. What it says is a stranger's. Main thread; nothing here waits
// for that program.
class PromiseSource
{
public:
    virtual ~PromiseSource() = default;
    virtual QByteArray proposedName() = 0;
    virtual void save(const QByteArray &address) = 0; // "file:///…"; once
    virtual std::optional<QByteArray> answer() = 0;   // nothing: not yet; empty: there will be none
};

// Makes one for what is being dropped at this moment and offers its promise as `format`.
using PromiseSourceMaker = std::function<std::unique_ptr<PromiseSource>(const QString &format)>;
