#include "krrxlinkedlist.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxIterator, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxGenLinkedList, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxGenLinkedListIterator, KrRxIterator)

KrRxGenLinkedList* newKrRxGenLinkedList() { return new KrRxGenLinkedList(); }

KrRxGenLinkedList::KrRxGenLinkedList() : mpHead(nullptr), mpTail(nullptr), mCount(0) {}

// Walks by count: the links beyond the ends may be stale (see removeFirstEntry).
KrRxGenLinkedList::~KrRxGenLinkedList() {
  Node* node = first();
  for (unsigned int i = 0; i < mCount; ++i) {
    Node* next = node->next;
    delete node;
    node = next;
  }
}

bool KrRxGenLinkedList::isEqualTo(const KrRxObject* other) const {
  const KrRxGenLinkedList* list = cast(other);
  if (!list || list->mCount != mCount) return false;
  const Node* mine = first();
  const Node* theirs = list->first();
  for (unsigned int i = 0; i < mCount; ++i, mine = mine->next, theirs = theirs->next)
    if (mine->object != theirs->object) return false;
  return true;
}

KrRxObject* KrRxGenLinkedList::getFirstEntry() const { return mpHead->object; }

KrRxObject* KrRxGenLinkedList::getLastEntry() const { return mpTail->object; }

unsigned int KrRxGenLinkedList::numEntries() const { return mCount; }

void KrRxGenLinkedList::insertBetween(Node* prev, Node* next, KrRxObject* object) {
  Node* node = new Node(prev, next, object);
  if (prev)
    prev->next = node;
  else
    mpHead = node;
  if (next)
    next->prev = node;
  else
    mpTail = node;
  ++mCount;
}

void KrRxGenLinkedList::insertBefore(Node* node, KrRxObject* object) {
  insertBetween(node == mpHead ? nullptr : node->prev, node, object);
}

void KrRxGenLinkedList::insertAfter(Node* node, KrRxObject* object) {
  insertBetween(node, node == mpTail ? nullptr : node->next, object);
}

void KrRxGenLinkedList::unlink(Node* node) {
  Node* prev = node == mpHead ? nullptr : node->prev;
  Node* next = node == mpTail ? nullptr : node->next;
  if (prev)
    prev->next = next;
  else
    mpHead = next;
  if (next)
    next->prev = prev;
  else
    mpTail = prev;
  delete node;
  --mCount;
}

void KrRxGenLinkedList::addNewFirstEntry(KrRxObject* object) { insertBetween(nullptr, first(), object); }

void KrRxGenLinkedList::addNewLastEntry(KrRxObject* object) { insertBetween(last(), nullptr, object); }

bool KrRxGenLinkedList::removeFirstEntry() {
  if (!mCount) return false;
  Node* old = mpHead;
  mpHead = old->next;
  delete old;
  --mCount;
  return true;
}

bool KrRxGenLinkedList::removeLastEntry() {
  if (!mCount) return false;
  Node* old = mpTail;
  mpTail = old->prev;
  delete old;
  --mCount;
  return true;
}

void KrRxGenLinkedList::addAfterIterator(KrRxGenLinkedListIterator* it, KrRxObject* object) {
  if (it && !it->done()) insertAfter(it->mpNode, object);
}

void KrRxGenLinkedList::addBeforeIterator(KrRxGenLinkedListIterator* it, KrRxObject* object) {
  if (it && !it->done()) insertBefore(it->mpNode, object);
}

bool KrRxGenLinkedList::removeAtIterator(KrRxGenLinkedListIterator* it) {
  if (!it || it->done()) return false;
  Node* node = it->mpNode;
  it->next();
  unlink(node);
  return true;
}

KrRxGenLinkedListIterator* KrRxGenLinkedList::newIterator(bool forward) const {
  if (forward) return new KrRxGenLinkedListForwardIterator(first());
  return new KrRxGenLinkedListBackwardIterator(last());
}

bool KrRxGenLinkedListIterator::done() const { return !mpNode; }

KrRxObject* KrRxGenLinkedListIterator::object() const { return mpNode ? mpNode->object : nullptr; }

bool KrRxGenLinkedListIterator::moveAlong(Node* Node::*link) {
  if (!mpNode) return false;
  mpNode = mpNode->*link;
  return mpNode != nullptr;
}

bool KrRxGenLinkedListForwardIterator::next() { return moveAlong(&Node::next); }

bool KrRxGenLinkedListBackwardIterator::next() { return moveAlong(&Node::prev); }
