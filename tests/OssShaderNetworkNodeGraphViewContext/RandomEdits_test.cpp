#include "RandomEdits.h"

#include <deque>

namespace {

TEST_F(RandomEdits, undoRedoSaveAndOpenGiveTheIdenticalDocument)
{
    constexpr int Rounds = 8;
    constexpr int Steps = 500;
    std::deque<ExpectedLog> refusals;
    for (const char *text : {"Cannot connect: ", "Swap Inputs: ", "Nothing to autoplace.",
                             "The clipboard holds no nodes", "is protected and stays"})
        refusals.emplace_back(text, ExpectedLog::Possible);
    const quint32 seed = startAnywhere();
    const QVector<Operation> all = operations() + commands();
    QMap<QByteArray, int> ran;
    for (int round = 0; round < Rounds; ++round) {
        supply();
        OssUndoManager::instance()->clear();
        const QByteArray start = m_project->stateHash();
        for (int step = 0; step < Steps; ++step) {
            const Operation &operation = all.at(below(all.size()));
            if (operation.run())
                ++ran[operation.name];
            if (step % 40 == 0) {
                expectWhole();
                expectWithinReach();
            }
            if (HasFailure())
                FAIL() << "seed " << seed << ", round " << round << ", step " << step << ": "
                       << operation.name;
        }
        expectUndoIsExact(start);
        expectWhole();
        reopen();
        if (HasFailure())
            FAIL() << "seed " << seed << ", round " << round;
    }
    EXPECT_EQ(ran.size(), all.size()) << "seed " << seed;
    for (const Operation &operation : all)
        EXPECT_GT(ran.value(operation.name), 0) << operation.name << ", seed " << seed;
}

} // namespace
