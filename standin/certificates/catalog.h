// The certificates or the revocation lists of a store, in order, with an index of their terms.
#pragma once

#include <algorithm>

#include "standin/certificates/stored_object.h"

namespace standin {

template <typename Object>
class Catalog {
 public:
  using Ptr = typename StoredObject<Object>::Ptr;
  using Places = std::vector<size_t>;

  Catalog() = default;
  /// Of several equal objects the first counts.
  explicit Catalog(std::vector<Ptr> objects) : objects_(std::move(objects)) {
    makeIndex();
    std::vector<Ptr> different;
    for (size_t i = 0; i < objects_.size(); ++i) {
      if (placeOf(*objects_[i]) == i) different.push_back(objects_[i]);
    }
    if (different.size() == objects_.size()) return;
    objects_ = std::move(different);
    makeIndex();
  }

  /// Adds an object unless an equal one is there.
  void add(Ptr object) {
    if (knows(*object)) return;
    const size_t place = objects_.size();
    for (const Term term : object->terms()) {
      const Entry entry{term, place};
      index_.insert(std::ranges::upper_bound(index_, entry), entry);
    }
    if (!object->isIndexed()) unindexed_.push_back(place);
    objects_.push_back(std::move(object));
  }

  const std::vector<Ptr>& all() const { return objects_; }
  /// Where the objects under the term are, in order; perhaps with others.
  Places find(Term term) const {
    Places places = unindexed_;
    const auto first = std::ranges::lower_bound(index_, Entry{term, 0});
    for (auto entry = first; entry != index_.end() && entry->first == term; ++entry) places.push_back(entry->second);
    std::ranges::sort(places);
    places.erase(std::unique(places.begin(), places.end()), places.end());
    return places;
  }
  bool knows(const StoredObject<Object>& object) const { return placeOf(object) < objects_.size(); }

 private:
  using Entry = std::pair<Term, size_t>;

  void makeIndex() {
    index_.clear();
    unindexed_.clear();
    for (size_t i = 0; i < objects_.size(); ++i) {
      for (const Term term : objects_[i]->terms()) index_.emplace_back(term, i);
      if (!objects_[i]->isIndexed()) unindexed_.push_back(i);
    }
    std::ranges::sort(index_);
  }
  /// The place of the first equal object; the number of objects if there is none.
  size_t placeOf(const StoredObject<Object>& object) const {
    const auto first = std::ranges::lower_bound(index_, Entry{object.identity(), 0});
    for (auto entry = first; entry != index_.end() && entry->first == object.identity(); ++entry) {
      if (objects_[entry->second]->der() == object.der()) return entry->second;
    }
    return objects_.size();
  }

  std::vector<Ptr> objects_;
  std::vector<Entry> index_;
  Places unindexed_;
};

}  // namespace standin
