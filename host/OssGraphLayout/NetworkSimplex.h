#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Places points on a line at whole numbers so that the weighted lengths of all edges are least and
/// no edge is shorter than it may be. After Gansner, Koutsofios, North and Vo, "A Technique for
/// Drawing Directed Graphs" (1993). The edges must have no loops.
class NetworkSimplex
{
public:
    explicit NetworkSimplex(int pointCount);

    /// The head lies at `length` or more beyond the tail; length may be negative, weight may not.
    void addEdge(int tail, int head, int length, int weight);

    /// Where points lie before; edges must hold. Without it each lies as far back as it may.
    void startFrom(std::vector<int> places) { m_places = std::move(places); }

    /// Ends after so many exchanges: what is found by then is good, if not the best.
    std::vector<int> solve(int mostExchanges);
    /// After solve(): points that may move without cost go to the middle of where they may.
    const std::vector<int> &balance();

private:
    struct Edge
    {
        int tail = -1;
        int head = -1;
        int length = 1;
        int weight = 1;
        int cut = 0;
        int treeIndex = -1;
    };

    struct Boundary;

    struct Side
    {
        int top = -1;
        bool below = false;
        bool isTail = false;
    };

    /// The other end of an edge of a point, as it is met in the search.
    struct End
    {
        int point;
        int length;
    };

    Edge &edge(int index) { return m_edges[std::size_t(index)]; }

    const Edge &edge(int index) const { return m_edges[std::size_t(index)]; }

    int slack(int index) const;
    void indexEdges();
    void placeBackmost();
    void connect();
    void buildTightTree();
    void reach(int point, int offset, Boundary *boundary);
    std::pair<int, int> nextTight(Boundary *boundary, int offset) const;
    void addToTree(int index);
    void number(int root, int parentEdge, int low);
    void initCuts();
    int cutOf(int treeEdge) const;
    bool isBelow(int point, int top) const;
    int leavingEdge();
    int enteringEdge(int leaving) const;
    Side smallerSide(int treeEdge) const;
    template <class Visit>
    void visit(const Side &side, Visit visit) const;
    void part(int leaving, int delta);
    int updateCuts(int from, int to, int cut, bool forward);
    void exchange(int leaving, int entering);

    int m_count;
    std::vector<Edge> m_edges;
    std::vector<int> m_outStart, m_out, m_inStart, m_in; ///< edges by their points
    std::vector<End> m_heads, m_tails;                   ///< as m_out and m_in
    std::vector<int> m_places;
    std::vector<int> m_tree; ///< edges
    std::vector<std::vector<int>> m_treeAt;
    std::vector<int> m_parent; ///< edge
    std::vector<int> m_low, m_lim, m_byLim, m_before;
    std::vector<std::pair<int, std::size_t>> m_way;
    std::vector<char> m_reached;
    std::size_t m_search = 0;
};
