/// \file
/// What the iterators of this library have in common: items that are found one after the other.
#ifndef QV_BITSTREAM_UNITS_ITEMITERATOR_H
#define QV_BITSTREAM_UNITS_ITEMITERATOR_H

#include <cstddef>
#include <iterator>

namespace qv {

/// The end of a range of items: after the last one.
struct EndOfItems {};

/// An input iterator that holds its item. \p Iterator, the iterator itself, has operator++() and sets item_
/// and isAtEnd_. Copies are independent of each other.
template <class Iterator, class Item>
class ItemIterator {
public:
    /// Each item is read once, in order.
    using iterator_category = std::input_iterator_tag;

    /// What it refers to.
    using value_type = Item;

    /// Of any iterator.
    using difference_type = std::ptrdiff_t;

    /// What operator->() returns.
    using pointer = const Item*;

    /// What operator*() returns.
    using reference = const Item&;

    /// The item. The reference is valid until the iterator advances or is destroyed.
    const Item& operator*() const noexcept { return item_; }

    /// A member of the item.
    const Item* operator->() const noexcept { return &item_; }

    /// Goes on to the next item, and returns a copy of the iterator as it was. Not allowed at the end.
    // NOLINTNEXTLINE(cert-dcl21-cpp): iterators are not const
    Iterator operator++(int) noexcept {
        Iterator& self = static_cast<Iterator&>(*this);
        const Iterator before = self;
        ++self;
        return before;
    }

    /// True after the last item.
    friend bool operator==(const ItemIterator& a, EndOfItems /*end*/) noexcept { return a.isAtEnd_; }

    /// True while there is an item.
    friend bool operator!=(const ItemIterator& a, EndOfItems /*end*/) noexcept { return !a.isAtEnd_; }

protected:
    Item item_ = {};        ///< the item
    bool isAtEnd_ = false;  ///< true after the last item
};

}  // namespace qv

#endif
