#include "GuardedHeap.h"

namespace qv_test {

namespace {

constexpr size_t kSlots = 4;

thread_local GuardedHeap* current = nullptr;

}  // namespace

GuardedHeap::GuardedHeap(size_t capacity) : slots_(kSlots) {
    for (Slot& slot : slots_) {
        slot.memory = std::make_unique<GuardedBuffer>(capacity);
    }
    current = this;
}

GuardedHeap::~GuardedHeap() {
    current = nullptr;
}

void* GuardedHeap::allocate(size_t size) {
    if (current == nullptr) {
        return nullptr;
    }
    for (Slot& slot : current->slots_) {
        if (slot.block == nullptr && size <= slot.memory->capacity()) {
            unsigned char* const block =
                current->place_ == Place::End ? slot.memory->end(size) : slot.memory->begin();
            slot.block = block;
            ++current->served_;
            return block;
        }
    }
    return nullptr;
}

bool GuardedHeap::release(const void* memory) {
    if (current == nullptr || memory == nullptr) {
        return false;
    }
    for (Slot& slot : current->slots_) {
        if (slot.block == memory) {
            slot.block = nullptr;
            return true;
        }
    }
    return false;
}

}  // namespace qv_test
