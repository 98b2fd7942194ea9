#pragma once

#include "OssGraphLayout/Layers.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Orders the elements of layers in their ranks; see orderElements().
class Ordering
{
public:
    using Order = Layers::Order;

    explicit Ordering(Layers *layers)
        : m_layers(*layers)
        , m_inBase(layers->elements.size(), 0)
        , m_outBase(layers->elements.size(), 0)
    {
    }

    /// Gives the best orders that were found, the best of them first, which the layers have by then.
    std::vector<Order> run(std::int64_t budget);

private:
    enum Sides { Left = 1, Right = 2, Both = 3 };

    struct Key
    {
        int place;
        int weight;
    };

    /// Of one element, sorted; they lie in m_keys.
    struct Keys
    {
        const Key *first;
        int size;
        int weight; ///< of all

        const Key *begin() const { return first; }

        const Key *end() const { return first + size; }
    };

    // Starts
    void startFromToday();
    /// In the order in which a walk along the wires comes to the elements.
    void startFromWalk(bool fromSources);
    void walkFrom(int root, std::vector<char> *seen, double *next);
    void startShaken(unsigned seed);
    bool startWithExchangedFrames(std::size_t upper);
    void startAgain(int start, const Order &best);
    void sortAllByY();

    // Improving
    std::int64_t improve(int sweeps);
    void sweep(bool rightwards, int sides, bool median, bool sort);
    void climb();
    void sortRank(int rank);
    void sortLevel(int frame, const std::vector<int> &elements, std::vector<int> *sorted);
    void setKeys(int rank, int sides, bool median);
    void keyFrames();
    void settleRank(int rank);
    /// The ranks beside one are to be looked at again.
    void soilBeside(int rank);
    template <bool (Ordering::*work)(int)>
    void workOn();
    bool exchangeIn(int rank);
    bool siftIn(int rank);
    int bestPlaceFor(int start, const std::vector<int> &elements);
    void takeAlong(int start, int end, std::vector<int> *elements);
    void gatherKeys(int rank);
    Keys keysOf(int element, bool left);
    static std::int64_t gainOfExchange(const Keys &upper, const Keys &lower);
    bool mayExchange(int a, int b) const;

    struct Found
    {
        std::int64_t crossings;
        Order order;
    };

    void keep(std::int64_t crossings, std::vector<Found> *best) const;

    // Counting
    void number(int rank);
    std::int64_t crossings();
    std::int64_t crossingsRightOf(int rank);

    Order save() const { return m_layers.ranks; }

    void restore(const Order &order);
    int frameAt(int element, int level) const;

    Layers &m_layers;
    std::vector<int> m_inBase, m_outBase; ///< of elements: where their ports are counted from
    std::vector<int> m_accumulated;
    std::vector<double> m_key;
    std::vector<char> m_dirty;
    std::vector<Key> m_keys;           ///< of a rank's elements
    std::vector<Keys> m_left, m_right; ///< of a rank's elements, by their places in it
    std::int64_t m_budget = 0;         ///< of looks at two elements
    bool m_evenMoves = false;          ///< also where nothing is won: other ways open then
};
