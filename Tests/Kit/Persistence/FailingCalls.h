#pragma once

#include <QByteArray>

// Lets one call fail, as on a disk that breaks at that moment: to the database (preparing, stepping, executing,
// opening, copying) or to the file system (second names, renaming, removing, flushing). Counts the calls of its thread
// from where it is made to where it goes. In this test program nothing is flushed for real: no store has to outlive a
// power cut.
class FailingCalls
{
public:
    enum class Kind { Database, Files };
    // Call `number`, from 1 on, fails; with 0 all are only counted. `onlyIn`: those to the database whose file's name
    // ends so.
    explicit FailingCalls(Kind kind, int number, QByteArray onlyIn = {});
    ~FailingCalls();
    FailingCalls(const FailingCalls &) = delete;
    FailingCalls &operator=(const FailingCalls &) = delete;

    int count() const { return m_count; }

    // For the calls themselves.
    static bool isNextToFail(Kind kind, const char *database = nullptr);

private:
    Kind m_kind;
    int m_number;
    QByteArray m_onlyIn;
    int m_count = 0;
};

// Does `round` without a fault first, then with each call failing in turn: `round(0)` answers how many there are.
template <class Round>
void forEachFailingCall(Round round)
{
    const int count = round(0);
    for (int number = 1; number <= count; ++number) {
        round(number);
    }
}
