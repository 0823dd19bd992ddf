// Nodes of the trees that are made and thrown away with every statement that is read: those that
// are free wait in a list for the next tree, for a general allocator costs more than the parsing.
#pragma once

#include <cstddef>
#include <new>

namespace owb::tsql {

// Base of a node type T that is always made by itself, never in an array. A thread's list is as
// long as its largest trees were.
template <class T>
struct Pooled {
#if !defined(__SANITIZE_ADDRESS__)  // the sanitizer is to see every node come and go
    static void* operator new(size_t size) {
        Free*& list = freeNodes();
        if (!list) return ::operator new(size);
        Free* const node = list;
        list = node->next;
        return node;
    }
    static void operator delete(void* node) {
        Free*& list = freeNodes();
        list = new (node) Free{list};
    }

  private:
    struct Free {
        Free* next;
    };
    static Free*& freeNodes() {
        static thread_local Free* list = nullptr;
        return list;
    }
#endif
};

}  // namespace owb::tsql
