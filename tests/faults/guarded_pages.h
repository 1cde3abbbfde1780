/* Memory whose neighbourhood may not be touched. */
#ifndef QZOCI_TESTS_FAULTS_GUARDED_PAGES_H
#define QZOCI_TESTS_FAULTS_GUARDED_PAGES_H

#include <cstddef>

namespace qzoci::test {

/* Which of its ends an object shares with the page. */
enum class PageEnd { first, last };

/* A page between two that nobody may touch: an access beyond either end ends the process. */
class GuardedPage {
public:
    /* Throws std::system_error. */
    GuardedPage();
    ~GuardedPage();
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    /* size bytes of the page, at its end. */
    std::byte* bytes(size_t size, PageEnd end) const;

    /* Room for one object at the page's end. What stood there stays. */
    template <typename Object>
    Object* place(PageEnd end) const {
        return reinterpret_cast<Object*>(bytes(sizeof(Object), end));
    }

    void make_read_only() const;
    void make_writable() const;

private:
    void protect(int protection) const;

    size_t page_size_;
    std::byte* pages_;
};

} // namespace qzoci::test

#endif /* QZOCI_TESTS_FAULTS_GUARDED_PAGES_H */
