// An Objective-C runtime of the kind that a Mac has, as small as the leaves allow, so that they run where there is
// none: classes as the compiler lays them out, messages, counted references with the entry points of ARC, weak
// references, pools. It judges more strictly than a Mac: a message to an object that has gone, a reference too many
// given back, an unknown selector and an autoreleased object without a pool each end the program with a word.

#include "runtime/ObjectiveC.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>
#include <vector>

#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(place, size) (static_cast<void>(place), static_cast<void>(size))
#endif

// The compiler names these; their layout is the published one of blocks and of the modern runtime.
extern "C" {
void* _NSConcreteStackBlock[32];
void* _NSConcreteMallocBlock[32];
void* _NSConcreteGlobalBlock[32];
std::uint8_t _objc_empty_cache[64];
void* objc_retain(void* object);
void objc_release(void* object);
void objc_storeStrong(void** place, void* object);
}

namespace {

using Selector = const char*;
using Implementation = void (*)();

struct Method {
  Selector name;
  const char* types;
  Implementation implementation;
};

struct MethodList {
  std::uint32_t entrySize;
  std::uint32_t count;
  Method methods[1];
};

struct Variable {
  std::int64_t* offset;
  const char* name;
  const char* type;
  std::uint32_t alignment;
  std::uint32_t size;
};

struct VariableList {
  std::uint32_t entrySize;
  std::uint32_t count;
  Variable variables[1];
};

struct ClassFacts {
  std::uint32_t flags;
  std::uint32_t start;
  std::uint32_t size;
  std::uint32_t reserved;
  const std::uint8_t* strongLayout;
  const char* name;
  MethodList* methods;
  void* protocols;
  VariableList* variables;
  const std::uint8_t* weakLayout;
  void* properties;

  bool isMeta() const { return (flags & 1) != 0; }
};

struct ClassObject {
  ClassObject* isa;
  ClassObject* parent;
  void* cache;
  void* table;
  ClassFacts* facts;
};

struct Category {
  const char* name;
  ClassObject* type;
  MethodList* objectMethods;
  MethodList* classMethods;
  void* protocols;
  void* properties;
};

struct Object {
  ClassObject* isa;
};

struct Super {
  void* receiver;
  ClassObject* type;
};

/// What stands before each object that the runtime has made.
struct alignas(16) Header {
  std::atomic<std::int64_t> references{1};
  std::atomic<bool> isAlive{true};
};

extern "C" ClassObject* const __start_objc_classlist[] __attribute__((weak));
extern "C" ClassObject* const __stop_objc_classlist[] __attribute__((weak));
extern "C" Category* const __start_objc_catlist[] __attribute__((weak));
extern "C" Category* const __stop_objc_catlist[] __attribute__((weak));

[[noreturn]] void fail(const char* what, const char* whose, const char* selector = "") {
  std::fprintf(stderr, "objective-c: %s: %s %s\n", what, whose, selector);
  std::abort();
}

/// Everything that the runtime knows, behind one lock that a method may take again while it runs. What the classes have
/// is known from the start and needs no lock: one would put threads in an order that they do not have on a Mac, and
/// hide from the thread sanitizer what they share.
class Registry {
 public:
  static Registry& shared() {
    // Never destroyed: objects may go after everything else has.
    static auto* const registry = new Registry;
    return *registry;
  }

  std::recursive_mutex& lock() { return lock_; }

  Implementation find(ClassObject* type, Selector selector) const {
    for (; type != nullptr; type = type->parent) {
      if (const auto found = extensions_.find(type); found != extensions_.end()) {
        for (const MethodList* list : found->second) {
          if (const Implementation implementation = findIn(list, selector)) return implementation;
        }
      }
      if (const Implementation implementation = findIn(type->facts->methods, selector)) return implementation;
    }
    return nullptr;
  }

  static Implementation findIn(const MethodList* list, Selector selector) {
    if (list == nullptr) return nullptr;
    for (std::uint32_t at = 0; at < list->count; ++at) {
      if (std::strcmp(list->methods[at].name, selector) == 0) return list->methods[at].implementation;
    }
    return nullptr;
  }

  std::map<std::string, int> living;
  std::unordered_map<void*, std::set<void**>> weakPlaces;
  // Kept, so that whoever uses an object that has gone is caught, and found by the search for leaks.
  std::vector<std::unique_ptr<std::uint8_t[]>> gone;

 private:
  Registry() {
    for (auto each = __start_objc_classlist; each < __stop_objc_classlist; ++each) prepare(*each);
    for (auto each = __start_objc_catlist; each < __stop_objc_catlist; ++each) {
      if ((*each)->objectMethods != nullptr) extensions_[(*each)->type].push_back((*each)->objectMethods);
      if ((*each)->classMethods != nullptr) extensions_[(*each)->type->isa].push_back((*each)->classMethods);
    }
  }

  /// Moves the variables of a class behind those of its parent, which may have more than its header declares.
  void prepare(ClassObject* type) {
    if (type == nullptr || !prepared_.insert(type).second) return;
    prepare(type->parent);
    ClassFacts& facts = *type->facts;
    if (facts.isMeta() || type->parent == nullptr || facts.start >= type->parent->facts->size) return;
    const std::uint32_t shift = (type->parent->facts->size - facts.start + 15U) & ~15U;
    for (std::uint32_t at = 0; facts.variables != nullptr && at < facts.variables->count; ++at) {
      *facts.variables->variables[at].offset += shift;
    }
    facts.start += shift;
    facts.size += shift;
  }

  std::recursive_mutex lock_;
  std::set<ClassObject*> prepared_;
  std::unordered_map<ClassObject*, std::vector<MethodList*>> extensions_;
};

bool isBlock(const void* object) {
  const auto isa = static_cast<const void*>(static_cast<const Object*>(object)->isa);
  return isa == _NSConcreteStackBlock || isa == _NSConcreteMallocBlock || isa == _NSConcreteGlobalBlock;
}

bool isOnStack(const void* block) {
  return static_cast<const void*>(static_cast<const Object*>(block)->isa) == _NSConcreteStackBlock;
}

/// Classes and literals were not made by the runtime and never go.
bool isEternal(const void* object) {
  const ClassObject* type = static_cast<const Object*>(object)->isa;
  return type->facts->isMeta() || std::strcmp(type->facts->name, "LiteralString") == 0;
}

Header& headerOf(void* object) {
  return *(static_cast<Header*>(object) - 1);
}

const char* nameOf(void* object) {
  return static_cast<Object*>(object)->isa->facts->name;
}

void expectAlive(void* object, const char* complaint, Selector selector = "") {
  if (!headerOf(object).isAlive) fail(complaint, nameOf(object), selector);
}

using Action = void (*)(void*, Selector);

/// Has the C++ variables of each class made from the root down, or destroyed in the other direction.
void runForEachClass(void* object, Selector selector, bool fromRoot) {
  std::vector<ClassObject*> line;
  for (ClassObject* type = static_cast<Object*>(object)->isa; type != nullptr; type = type->parent)
    line.push_back(type);
  if (fromRoot) std::reverse(line.begin(), line.end());
  for (const ClassObject* type : line) {
    const Implementation found = Registry::findIn(type->facts->methods, selector);
    if (found != nullptr) reinterpret_cast<Action>(found)(object, selector);
  }
}

thread_local std::vector<std::vector<void*>> pools;

}  // namespace

std::map<std::string, int> objectivec::livingObjects() {
  Registry& registry = Registry::shared();
  const std::lock_guard guard(registry.lock());
  std::map<std::string, int> living = registry.living;
  std::erase_if(living, [](const auto& each) { return each.second == 0; });
  return living;
}

extern "C" {

Implementation methodForMessage(void* object, Selector selector) {
  if (isBlock(object)) fail("a message to a block", selector);
  if (!isEternal(object)) expectAlive(object, "a message to an object that has gone", selector);
  const Implementation found = Registry::shared().find(static_cast<Object*>(object)->isa, selector);
  if (found == nullptr) fail("unrecognized selector", nameOf(object), selector);
  return found;
}

Implementation methodForSuperMessage(const Super* super, Selector selector) {
  const Implementation found = Registry::shared().find(super->type->parent, selector);
  if (found == nullptr) fail("unrecognized selector of a parent", super->type->facts->name, selector);
  return found;
}

bool objectResponds(void* object, Selector selector) {
  return Registry::shared().find(static_cast<Object*>(object)->isa, selector) != nullptr;
}

bool objectIsKindOf(void* object, void* type) {
  for (const ClassObject* each = static_cast<Object*>(object)->isa; each != nullptr; each = each->parent) {
    if (each == type) return true;
  }
  return false;
}

void* makeObject(ClassObject* type) {
  Registry& registry = Registry::shared();
  const std::lock_guard guard(registry.lock());
  auto* memory = static_cast<std::uint8_t*>(::operator new[](sizeof(Header) + type->facts->size));
  std::memset(memory, 0, sizeof(Header) + type->facts->size);
  auto* object = reinterpret_cast<Object*>(new (memory) Header + 1);
  object->isa = type;
  ++registry.living[type->facts->name];
  runForEachClass(object, ".cxx_construct", true);
  return object;
}

void endObject(void* object) {
  Registry& registry = Registry::shared();
  runForEachClass(object, ".cxx_destruct", false);
  const std::lock_guard guard(registry.lock());
  --registry.living[nameOf(object)];
  headerOf(object).isAlive = false;
  // What it had must not be looked at either, which needs no message.
  const std::size_t size = static_cast<Object*>(object)->isa->facts->size;
  ASAN_POISON_MEMORY_REGION(static_cast<Object*>(object) + 1, size - sizeof(Object));
  registry.gone.emplace_back(reinterpret_cast<std::uint8_t*>(&headerOf(object)));
}

void* _Block_copy(const void* block);
void _Block_release(const void* block);

void* objc_retain(void* object) {
  if (object == nullptr) return nullptr;
  // Only objc_retainBlock moves a block to the heap; one on the stack stays with its frame.
  if (isBlock(object)) return isOnStack(object) ? object : _Block_copy(object);
  if (isEternal(object)) return object;
  expectAlive(object, "a reference to an object that has gone");
  headerOf(object).references.fetch_add(1, std::memory_order_relaxed);
  return object;
}

/// Gives back one reference of several, without the lock.
static bool giveBackOneOfSeveral(std::atomic<std::int64_t>& references) {
  std::int64_t count = references;
  while (count > 1) {
    if (references.compare_exchange_weak(count, count - 1, std::memory_order_acq_rel)) return true;
  }
  return false;
}

void objc_release(void* object) {
  if (object == nullptr) return;
  if (isBlock(object)) return _Block_release(object);
  if (isEternal(object)) return;
  expectAlive(object, "a reference too many given back");
  if (giveBackOneOfSeveral(headerOf(object).references)) return;
  Registry& registry = Registry::shared();
  Implementation end = nullptr;
  {
    // With the lock, so that no weak reference becomes a strong one meanwhile.
    const std::lock_guard guard(registry.lock());
    if (--headerOf(object).references > 0) return;
    if (const auto found = registry.weakPlaces.find(object); found != registry.weakPlaces.end()) {
      for (void** place : found->second) *place = nullptr;
      registry.weakPlaces.erase(found);
    }
    end = registry.find(static_cast<Object*>(object)->isa, "dealloc");
    headerOf(object).references = 1;
  }
  reinterpret_cast<Action>(end)(object, "dealloc");
}

void* objc_autoreleasePoolPush() {
  pools.emplace_back();
  return reinterpret_cast<void*>(pools.size());
}

void objc_autoreleasePoolPop(void* pool) {
  while (pools.size() >= reinterpret_cast<std::size_t>(pool)) {
    // What is released may fill the pool again.
    while (!pools.back().empty()) {
      void* object = pools.back().back();
      pools.back().pop_back();
      objc_release(object);
    }
    pools.pop_back();
  }
}

void* objc_autorelease(void* object) {
  if (object == nullptr || (!isBlock(object) && isEternal(object))) return object;
  if (pools.empty()) fail("autoreleased without a pool", isBlock(object) ? "block" : nameOf(object));
  pools.back().push_back(object);
  return object;
}

void* objc_retainAutorelease(void* object) {
  return objc_autorelease(objc_retain(object));
}
void* objc_autoreleaseReturnValue(void* object) {
  return objc_autorelease(object);
}
void* objc_retainAutoreleaseReturnValue(void* object) {
  return objc_autorelease(objc_retain(object));
}
void* objc_retainAutoreleasedReturnValue(void* object) {
  return objc_retain(object);
}
void* objc_retainBlock(void* block) {
  return _Block_copy(block);
}

void objc_storeStrong(void** place, void* object) {
  void* old = *place;
  objc_retain(object);
  *place = object;
  objc_release(old);
}

void* objc_initWeak(void** place, void* object) {
  Registry& registry = Registry::shared();
  const std::lock_guard guard(registry.lock());
  *place = object;
  if (object == nullptr) return object;
  if (isBlock(object)) fail("a weak reference to a block", "");
  if (isEternal(object)) return object;
  expectAlive(object, "a weak reference to an object that has gone");
  registry.weakPlaces[object].insert(place);
  return object;
}

void objc_destroyWeak(void** place) {
  Registry& registry = Registry::shared();
  const std::lock_guard guard(registry.lock());
  if (*place != nullptr) registry.weakPlaces[*place].erase(place);
  *place = nullptr;
}

void* objc_storeWeak(void** place, void* object) {
  objc_destroyWeak(place);
  return objc_initWeak(place, object);
}

void* objc_loadWeakRetained(void** place) {
  const std::lock_guard guard(Registry::shared().lock());
  return objc_retain(*place);
}

void objc_copyWeak(void** to, void** from) {
  const std::lock_guard guard(Registry::shared().lock());
  objc_initWeak(to, *from);
}

void objc_moveWeak(void** to, void** from) {
  objc_copyWeak(to, from);
  objc_destroyWeak(from);
}

void objc_enumerationMutation(void* collection) {
  fail("a collection changed while it was walked", nameOf(collection));
}

void* objc_getProperty(void* object, Selector, long offset, bool) {
  return objc_autorelease(objc_retain(*reinterpret_cast<void**>(static_cast<char*>(object) + offset)));
}

void objc_setProperty_atomic(void* object, Selector, void* value, long offset) {
  objc_storeStrong(reinterpret_cast<void**>(static_cast<char*>(object) + offset), value);
}

void objc_setProperty_nonatomic(void* object, Selector selector, void* value, long offset) {
  objc_setProperty_atomic(object, selector, value, offset);
}

// Of what is an object here nothing changes once it was made, so that a copy is one more reference.
void objc_setProperty_atomic_copy(void* object, Selector selector, void* value, long offset) {
  void* const copy = value != nullptr && isBlock(value) ? _Block_copy(value) : objc_retain(value);
  objc_setProperty_atomic(object, selector, copy, offset);
  objc_release(copy);
}

void objc_setProperty_nonatomic_copy(void* object, Selector selector, void* value, long offset) {
  objc_setProperty_atomic_copy(object, selector, value, offset);
}

void objc_copyStruct(void* to, const void* from, long size, bool, bool) {
  std::memcpy(to, from, static_cast<std::size_t>(size));
}

}  // extern "C"

// Blocks, after the published layout.
namespace {

struct BlockFacts {
  unsigned long reserved;
  unsigned long size;
  void (*copy)(void* to, const void* from);
  void (*dispose)(const void* block);
};

struct Block {
  void* isa;
  std::atomic<int> flags;
  int reserved;
  void* invoke;
  BlockFacts* facts;
};

struct SharedVariable {
  void* isa;
  SharedVariable* forwarding;
  std::atomic<int> flags;
  int size;
  void (*keep)(void* to, void* from);
  void (*destroy)(void* variable);
};

constexpr int isOnHeap = 1 << 24;
constexpr int hasHelpers = 1 << 25;
constexpr int isGlobal = 1 << 28;
constexpr int oneReference = 2;
constexpr int references = 0xfffe;

constexpr int fieldIsObject = 3;
constexpr int fieldIsBlock = 7;
constexpr int fieldIsShared = 8;
constexpr int fieldKinds = 15;

void countBlock(int change) {
  Registry& registry = Registry::shared();
  const std::lock_guard guard(registry.lock());
  registry.living["block"] += change;
}

SharedVariable* copyToHeap(SharedVariable* variable) {
  if (variable->forwarding->flags & isOnHeap) {
    variable->forwarding->flags += oneReference;
    return variable->forwarding;
  }
  auto* copy = static_cast<SharedVariable*>(std::malloc(static_cast<std::size_t>(variable->size)));
  std::memcpy(static_cast<void*>(copy), variable, static_cast<std::size_t>(variable->size));
  // One for the block and one for the frame that declared it.
  copy->flags = (variable->flags & ~0xffff) | isOnHeap | (2 * oneReference);
  copy->forwarding = copy;
  variable->forwarding = copy;
  if (variable->flags & hasHelpers) variable->keep(copy, variable);
  return copy;
}

void releaseShared(SharedVariable* variable) {
  variable = variable->forwarding;
  if (!(variable->flags & isOnHeap)) return;
  if (((variable->flags -= oneReference) & references) != 0) return;
  if (variable->flags & hasHelpers) variable->destroy(variable);
  std::free(variable);
}

}  // namespace

extern "C" {

void* _Block_copy(const void* original) {
  auto* block = static_cast<Block*>(const_cast<void*>(original));
  if (block == nullptr || (block->flags & isGlobal)) return block;
  if (block->flags & isOnHeap) {
    block->flags += oneReference;
    return block;
  }
  auto* copy = static_cast<Block*>(std::malloc(block->facts->size));
  std::memcpy(static_cast<void*>(copy), block, block->facts->size);
  copy->isa = _NSConcreteMallocBlock;
  copy->flags = (block->flags & ~0xffff) | isOnHeap | oneReference;
  if (block->flags & hasHelpers) block->facts->copy(copy, block);
  countBlock(1);
  return copy;
}

void _Block_release(const void* released) {
  auto* block = static_cast<Block*>(const_cast<void*>(released));
  if (block == nullptr || !(block->flags & isOnHeap)) return;
  if (((block->flags -= oneReference) & references) != 0) return;
  if (block->flags & hasHelpers) block->facts->dispose(block);
  countBlock(-1);
  std::free(block);
}

void _Block_object_assign(void* to, const void* from, int flags) {
  void*& place = *static_cast<void**>(to);
  void* value = const_cast<void*>(from);
  switch (flags & fieldKinds) {
    case fieldIsObject:
      place = objc_retain(value);
      break;
    case fieldIsBlock:
      place = _Block_copy(value);
      break;
    case fieldIsShared:
      place = copyToHeap(static_cast<SharedVariable*>(value));
      break;
    default:
      place = value;
  }
}

void _Block_object_dispose(const void* object, int flags) {
  void* value = const_cast<void*>(object);
  switch (flags & fieldKinds) {
    case fieldIsObject:
      return objc_release(value);
    case fieldIsBlock:
      return _Block_release(value);
    case fieldIsShared:
      return releaseShared(static_cast<SharedVariable*>(value));
    default:
      return;
  }
}

}  // extern "C"
