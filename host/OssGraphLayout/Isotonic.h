#pragma once

#include <cstddef>
#include <vector>

/// Numbers that never fall and lie as near to wanted ones as may be, by weighted squares: pool
/// adjacent violators.
class Isotonic
{
public:
    void add(double wanted, double weight)
    {
        m_pools.push_back({wanted * weight, weight, 1});
        while (m_pools.size() > 1) {
            const Pool last = m_pools.back();
            Pool &before = m_pools[m_pools.size() - 2];
            if (before.sum * last.weight <= last.sum * before.weight)
                break;
            before.sum += last.sum;
            before.weight += last.weight;
            before.count += last.count;
            m_pools.pop_back();
        }
    }

    const std::vector<double> &solve()
    {
        m_values.clear();
        for (const Pool &pool : m_pools)
            m_values.insert(m_values.end(), std::size_t(pool.count), pool.sum / pool.weight);
        return m_values;
    }

private:
    struct Pool
    {
        double sum;
        double weight;
        int count;
    };

    std::vector<Pool> m_pools;
    std::vector<double> m_values;
};
