#include "Ossa/Scripting/RunCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/Interrupt.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssScripting/OssScriptEngine.h"

#include <QEventLoop>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int interruptPoll = 50; // ms

} // namespace

int runRunCommand(const RunOptions &options)
{
    if (!options.project.isEmpty()) {
        const OssResult opened = OssProjectManager::instance()->openProject(options.project);
        if (!opened)
            return failCommand(opened.error());
    }
    Interrupt::catchSignals();
    OssScriptEngine *engine = OssScriptEngine::instance();
    engine->setOutput(OssScriptEngine::Output::Streams);
    int exitCode = ExitCode::Failure;
    QEventLoop loop;
    QObject::connect(engine, &OssScriptEngine::finished, &loop, [&](int code) {
        exitCode = code;
        loop.quit();
    });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, engine, [engine] {
        if (Interrupt::isRequested())
            engine->stop();
    });
    poll.start(interruptPoll);
    if (engine->runFile(options.script, options.arguments))
        loop.exec();
    return exitCode;
}

int runStubsCommand(const QString &path)
{
    const QByteArray text = OssScriptEngine::stubs().toUtf8();
    if (path.isEmpty()) {
        std::fwrite(text.constData(), 1, std::size_t(text.size()), stdout);
        return ExitCode::Success;
    }
    const OssResult written = OssAtomicFile::write(path, text);
    return written ? ExitCode::Success : failCommand(written.error());
}
