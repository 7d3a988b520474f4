#pragma once

#include "core/arranging/ReorderMove.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/// How a list gets into another order with the fewest moves. Pure; made for lists of a few dozen.
namespace lumnara::ReorderPlan {

/// The moves that put a list in order. `ranks` is a permutation of 0..n-1: for each place of the list, the
/// place in the target of the element there. A longest increasing subsequence of the ranks (Schensted 1961,
/// by patience sorting) stays, everything else moves once, in the order of the target.
std::vector<ReorderMove> movesOfRanks(std::vector<std::size_t> ranks);

/// The place in `current` of each element of reconciled(desired, current).
template <class T>
std::vector<std::size_t> reconciledPlaces(const std::vector<T>& desired, const std::vector<T>& current) {
    std::vector<std::size_t> places;
    std::vector<bool> taken(current.size(), false);
    const auto take = [&](std::size_t place) {
        if (!taken[place]) places.push_back(place);
        taken[place] = true;
    };
    for (const T& element : desired)
        if (const auto found = std::ranges::find(current, element); found != current.end())
            take(static_cast<std::size_t>(found - current.begin()));
    for (std::size_t place = 0; place < current.size(); ++place) take(place);
    return places;
}

/// The order to aim for, a permutation of `current`: `desired` without what `current` doesn't hold and
/// without repetitions, then the rest of `current` in its order.
template <class T> std::vector<T> reconciled(const std::vector<T>& desired, const std::vector<T>& current) {
    std::vector<T> target;
    target.reserve(current.size());
    for (const std::size_t place : reconciledPlaces(desired, current)) target.push_back(current[place]);
    return target;
}

/// The fewest moves from `current` to reconciled(desired, current), in the order of the target.
template <class T>
std::vector<ReorderMove> moves(const std::vector<T>& current, const std::vector<T>& desired) {
    const std::vector<std::size_t> places = reconciledPlaces(desired, current);
    std::vector<std::size_t> ranks(places.size());
    for (std::size_t rank = 0; rank < places.size(); ++rank) ranks[places[rank]] = rank;
    return movesOfRanks(std::move(ranks));
}

/// The list after the move; unchanged when a place of the move is not in the list.
template <class T> std::vector<T> applying(ReorderMove move, std::vector<T> list) {
    const auto size = static_cast<std::ptrdiff_t>(list.size());
    if (move.from < 0 || move.from >= size || move.to < 0 || move.to >= size) return list;
    const auto taken = list.begin() + move.from;
    T element = std::move(*taken);
    list.erase(taken);
    list.insert(list.begin() + move.to, std::move(element));
    return list;
}

} // namespace lumnara::ReorderPlan
