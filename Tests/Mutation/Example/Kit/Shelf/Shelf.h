#pragma once

#include <vector>

// What mutate_test.py puts faults into: each line of Shelf.cpp says which faults it has, and what becomes of them.
class Shelf
{
public:
    bool put(int book);
    bool putTwice(int book);
    int lowest() const;
    void tidy();
    void empty();
    bool isWide() const;
    const std::vector<int> &books() const { return m_books; }

private:
    void note(int book);
    void sort();

    std::vector<int> m_books;
    std::vector<int> m_lending;
    int m_notes = 0;
};

int widthOf(int book);
