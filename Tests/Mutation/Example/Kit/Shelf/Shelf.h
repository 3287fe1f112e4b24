#pragma once

#include <map>
#include <string>
#include <vector>

struct Board
{
    std::vector<int> books;
    int width = 0;
};

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
    int widthWith(int book) const;
    void label(std::map<std::string, int> &labels, std::string &text) const;
    void leave();
    std::size_t lendingCount() const { return m_lending.size(); }
    const std::vector<int> &books() const { return m_books; }

private:
    void note(int book);
    void sort();

    std::vector<int> m_books;
    std::vector<int> m_lending;
    int m_notes = 0;
};

int widthOf(int book);

// The house's.
void sendKeys();
void closeDoor();
