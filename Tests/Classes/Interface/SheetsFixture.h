#pragma once

#include "Classes/Interface/Sheets/QuestionSheets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

// A window from which sheets hang, and somebody who answers them.
class SheetsFixture : public testing::Test
{
protected:
    SheetsFixture()
    {
        window.resize(900, 700);
        window.show();
    }
    static bool isSheetFocused()
    {
        for (QWidget *widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
            if (qobject_cast<Sheet *>(widget)) {
                return true;
            }
        }
        return false;
    }
    // Presses these keys, one after another, once the sheet waits for them.
    static void press(const QList<Qt::Key> &keys)
    {
        auto *poll = new QTimer(qApp);
        poll->callOnTimeout([keys, poll] {
            if (!isSheetFocused()) {
                return;
            }
            poll->stop();
            poll->deleteLater();
            for (const Qt::Key key : keys) {
                QTest::keyClick(QApplication::focusWidget(), key);
            }
        });
        poll->start(20);
    }
    // What somebody does once the sheet, or a window of that kind, is there.
    template <class T>
    static void when(std::function<void(T &)> act)
    {
        auto *poll = new QTimer(qApp);
        poll->callOnTimeout([act, poll] {
            for (QWidget *top : QApplication::topLevelWidgets()) {
                QList<T *> found = top->findChildren<T *>();
                if (auto *self = qobject_cast<T *>(top)) {
                    found.prepend(self);
                }
                for (T *each : found) {
                    if (each->isVisible()) {
                        poll->stop();
                        poll->deleteLater();
                        act(*each);
                        return;
                    }
                }
            }
        });
        poll->start(5);
    }
    static QAbstractButton *button(const QWidget &in, const char *text)
    {
        for (QAbstractButton *each : in.findChildren<QAbstractButton *>()) {
            if (each->text() == QString::fromUtf8(text)) {
                return each;
            }
        }
        return nullptr;
    }
    static QString texts(const QWidget &in)
    {
        QStringList result;
        for (const QLabel *label : in.findChildren<QLabel *>()) {
            if (label->isVisible()) {
                result.append(label->text());
            }
        }
        return result.join(u'|');
    }
    QList<DuplicatePair> pairs(int count) const
    {
        QList<DuplicatePair> result(count);
        for (DuplicatePair &pair : result) {
            pair.existingTitle = QStringLiteral("mark");
            pair.newTitle = QStringLiteral("mark copy");
        }
        return result;
    }
    using Choices = QList<DuplicateChoice>;
    std::optional<DuplicateAnswers> resolved(int count)
    {
        DuplicatesSheet sheet(&window, pairs(count));
        const int code = sheet.run();
        return sheet.answer(code);
    }

    QMainWindow window;
};
