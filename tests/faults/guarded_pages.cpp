#include "tests/faults/guarded_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qzoci::test {
namespace {

constexpr size_t page_count = 3;

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

} // namespace

GuardedPage::GuardedPage() : page_size_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    void* const pages = mmap(nullptr, page_count * page_size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        fail("mmap");
    }
    pages_ = static_cast<std::byte*>(pages);
    make_writable();
}

GuardedPage::~GuardedPage() {
    munmap(pages_, page_count * page_size_);
}

std::byte* GuardedPage::bytes(size_t size, PageEnd end) const {
    std::byte* const page = pages_ + page_size_;
    return end == PageEnd::first ? page : page + page_size_ - size;
}

void GuardedPage::make_read_only() const {
    protect(PROT_READ);
}

void GuardedPage::make_writable() const {
    protect(PROT_READ | PROT_WRITE);
}

void GuardedPage::protect(int protection) const {
    if (mprotect(pages_ + page_size_, page_size_, protection) != 0) {
        fail("mprotect");
    }
}

} // namespace qzoci::test
