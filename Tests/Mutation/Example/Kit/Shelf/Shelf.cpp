#include "Kit/Shelf/Shelf.h"

#include <algorithm>

#define SHELF_IS_FULL(books) ((books).size() >= 3)

namespace {

constexpr int narrow(int width)
{
    return width < 4 ? width : 4;
}
static_assert(narrow(5) < 5);

void measure(Board &board)
{
    board.width = int(board.books.size());
}

const bool isTableWide = 3 < 4;

} // namespace

bool Shelf::put(int book)
{
    if (book < 0) { // condition: noticed, error: noticed, bound: noticed, bound: noticed
        return false;
    }
    if (SHELF_IS_FULL(m_books)) {
        return false;
    }
    m_books.reserve(3);
    m_books.push_back(book); // call: noticed
    note(book);              // call: survived
    return true;
}

bool Shelf::putTwice(int book)
{
    return put(book) && put(book); // condition: noticed, condition: noticed
}

int Shelf::lowest() const
{
    int lowest = m_books.empty() ? 0 : m_books.front(); // condition: noticed
    for (const int book : m_books) {
        if (book < lowest) { // condition: noticed, bound: equivalent
            lowest = book;
        }
    }
    return lowest;
}

void Shelf::tidy()
{
    sort();                                // call: noticed, swap: noticed
    m_books.push_back(int(m_notes / 100)); // call: noticed
}

void Shelf::empty()
{
    m_books.clear();   // call: never executed
    m_lending.clear(); // call: never executed
}

void Shelf::note(int)
{
    ++m_notes;
    while (m_notes > 1000) { // bound: survived, bound: survived
        m_notes -= 1000;
    }
}

void Shelf::sort()
{
    std::ranges::sort(m_books); // call: noticed
}

int Shelf::widthWith(int book) const
{
    Board board;
    board.books.push_back(book); // call: noticed, swap: noticed
    measure(board);              // call: noticed
    return board.width;
}

bool Shelf::isWide() const
{
    switch (m_books.size()) {
    case 1 + 1:
        return isTableWide;
    default:
        return m_books.size() > 2 + 0; // bound: survived, bound: noticed, bound: noticed
    }
}

void Shelf::label(std::map<std::string, int> &labels, std::string &text) const
{
    labels.insert_or_assign("books", int(m_books.size())); // call: noticed
    labels.insert_or_assign("lowest", lowest());           // call: noticed
    text += "shelf ";                                      // call: noticed, swap: noticed
    text += "of books";                                    // call: noticed
}

void Shelf::leave()
{
    const auto lend = [this] { m_lending.push_back(1); }; // call: survived
    lend();                                               // call: survived, swap: noticed
    m_lending.clear();                                    // call: noticed
    sendKeys();                                           // call: noticed, swap: noticed
    closeDoor();                                          // call: noticed
}
