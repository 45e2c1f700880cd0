#pragma once

#include <cstddef>
#include <deque>
#include <utility>

namespace orvello::headless {

/// What happened, in order. Keeps the latest entries up to a capacity, so that a simulation of years stays
/// small, and the number of all entries ever added.
template <class Entry> class Record {
  public:
    /// The entries kept, the oldest first.
    const std::deque<Entry>& entries() const { return entries_; }
    const Entry& last() const { return entries_.back(); }
    bool empty() const { return entries_.empty(); }
    /// All entries since the start, those no longer kept included.
    std::size_t count() const { return count_; }

    /// Forgets the entries; the count goes on.
    void clear() { entries_.clear(); }
    /// Keeps so many entries from now on; 0 keeps none.
    void setCapacity(std::size_t capacity) {
        capacity_ = capacity;
        trim();
    }

    /// Returns the entry's number, from 0.
    std::size_t add(Entry entry) {
        entries_.push_back(std::move(entry));
        trim();
        return count_++;
    }
    /// The entry with that number, or null when it is no longer kept.
    Entry* entry(std::size_t number) {
        const std::size_t fromEnd = count_ - number;
        return fromEnd <= entries_.size() ? &entries_[entries_.size() - fromEnd] : nullptr;
    }

  private:
    void trim() {
        while (entries_.size() > capacity_)
            entries_.pop_front();
    }

    std::deque<Entry> entries_;
    std::size_t count_ = 0;
    std::size_t capacity_ = 10'000;
};

} // namespace orvello::headless
