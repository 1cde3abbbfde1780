/* Tables in Markdown, with columns that line up in a terminal too. */
#ifndef QZOCI_BENCH_TABLE_H
#define QZOCI_BENCH_TABLE_H

#include <ostream>
#include <string>
#include <vector>

namespace qzoci::bench {

class Table {
public:
    /* The first columns hold words and are set to the left. */
    Table(std::vector<std::string> titles, size_t columns_of_words);

    /* As many cells as there are titles. */
    void add(std::vector<std::string> cells);

    friend std::ostream& operator<<(std::ostream& out, const Table& table);

private:
    std::vector<size_t> widths() const;
    void write_line(std::ostream& out, const std::vector<std::string>& cells,
                    const std::vector<size_t>& widths) const;

    std::vector<std::vector<std::string>> lines_; /* the titles first */
    size_t columns_of_words_;
};

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_TABLE_H */
