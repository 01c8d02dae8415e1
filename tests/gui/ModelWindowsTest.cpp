// The embedded host's windows: the targets of the browser's block actions.
// Commands go to the host as the browser sends them; what is checked is what
// a user would see in the model windows, dialogs and help, and what a saved
// file holds. The person's answers to file and unsaved-changes prompts come
// from the test.

#include "BrowserWindowFixture.h"

#include <QFileInfo>

namespace LibraryBrowser::Testing {
namespace {

const char* const gain = "arithmetica/Basic Operations/Gain";
const char* const sum = "arithmetica/Basic Operations/Sum";

class ModelWindowsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        session.host().showWindows();
        Host::ModelWindowPrompts prompts;
        prompts.saveFileName = [this](QWidget*, const QString& suggested) { return suggestedFiles.append(suggested), saveAnswer; };
        prompts.openFileName = [this](QWidget*) { return openAnswer; };
        prompts.unsavedChanges = [this](QWidget*, const QString& name) { return askedAboutUnsaved.append(name), unsavedAnswer; };
        prompts.failure = [this](QWidget*, const QString&, const QString& message) { failures.append(message); };
        windows().setPrompts(prompts);
    }

    HostInterpreter::CallResult call(const std::string& command, std::vector<HostValue> inputs, int outputs = 0)
    {
        return session.host().callWithTrap(command, outputs, inputs);
    }
    std::string newModel()
    {
        const auto result = call("private_td_new_system", {HostValue::string("Model")}, 1);
        EXPECT_TRUE(result.ok);
        return result.outputs.empty() ? "" : result.outputs.front().toString();
    }
    Host::ModelWindows& windows() { return *session.host().modelWindows(); }
    Host::ModelWindow* window(const std::string& name) { return windows().window(name); }
    // Drops the block where the model point of the window lies on the screen.
    void dropAt(const std::string& block, const std::string& model, QPoint modelPoint)
    {
        const QPoint at = window(model)->viewport()->mapToGlobal(modelPoint);
        const HostValue screen = HostValue::doubleMatrix(1, 2, {double(at.x()), double(at.y())});
        ASSERT_TRUE(call("private_td_drop_block", {HostValue::string(block), HostValue::string(model), screen}).ok);
    }
    ExampleRootSession session;
    QTemporaryDir directory;
    QString saveAnswer;
    QString openAnswer;
    QStringList suggestedFiles;
    QStringList askedAboutUnsaved;
    QStringList failures;
    Host::ModelWindowPrompts::Unsaved unsavedAnswer = Host::ModelWindowPrompts::Unsaved::Cancel;
};

// A model saved from its window opens again with its blocks where they were dropped;
// a file that is no model, or a save that would hide a library, is refused.
TEST_F(ModelWindowsTest, AModelSavedFromItsWindowOpensAgainWithItsBlocksWhereTheyWereDropped)
{
    const std::string model = newModel();
    const auto current = [&] { return call("private_td_get_current_open_mdl", {}, 1).outputs.front().toString(); };
    dropAt(gain, model, {150, 90});
    dropAt(sum, model, {40, 210});

    // Saving an untitled model asks for a file; the model takes its name and
    // a second save goes to the same file without asking.
    saveAnswer = directory.filePath("pendulum");
    window(model)->fileAction(Host::ModelWindow::FileCommand::Save)->trigger();
    const QString file = directory.filePath("pendulum.tdlib.json");
    ASSERT_TRUE(QFileInfo::exists(file)) << failures.join("; ").toStdString();
    EXPECT_EQ(std::make_tuple(suggestedFiles.value(0).endsWith(QString::fromStdString(model) + ".tdlib.json"),
                              window(model), window("pendulum") ? window("pendulum")->windowTitle() : QString(), current()),
              std::make_tuple(true, static_cast<Host::ModelWindow*>(nullptr), QString("pendulum"), std::string("pendulum")));
    dropAt(gain, "pendulum", {300, 40});
    window("pendulum")->fileAction(Host::ModelWindow::FileCommand::Save)->trigger();
    EXPECT_EQ(suggestedFiles.size(), 1);
    window("pendulum")->close();
    QApplication::processEvents();
    EXPECT_TRUE(askedAboutUnsaved.isEmpty()) << "nothing was left unsaved";
    EXPECT_FALSE(session.host().systems().isLoaded("pendulum"));

    openAnswer = file;
    ASSERT_TRUE(call("uiopen", {HostValue::string("*.mdl")}).ok);
    ASSERT_TRUE(window("pendulum") && window("pendulum")->isVisible());
    EXPECT_EQ(window("pendulum")->blockNames(), (QStringList{"Gain", "Sum", "Gain1"}));
    std::vector<QPointF> places;
    for (const Host::BlockRecord& block : session.host().systems().find("pendulum")->document.blocks)
        places.emplace_back(block.position.left, block.position.top);
    EXPECT_EQ(places, (std::vector<QPointF>{{150, 90}, {40, 210}, {300, 40}}));

    openAnswer = directory.filePath("broken.tdlib.json");
    writeFile(openAnswer.toStdString(), "{\"format\": \"tandril-library\"");
    EXPECT_FALSE(call("uiopen", {HostValue::string("*.mdl")}).ok);
    saveAnswer = directory.filePath("arithmetica.tdlib.json");
    window("pendulum")->fileAction(Host::ModelWindow::FileCommand::SaveAs)->trigger();
    EXPECT_TRUE(window("pendulum") && !QFileInfo::exists(saveAnswer));
    ASSERT_EQ(failures.size(), 2);
    EXPECT_TRUE(failures.front().contains("broken.tdlib.json")) << failures.front().toStdString();

    // Unsaved changes ask before the window closes: Cancel, Save with the file
    // dialog cancelled, and Save to a file that can't be written (the person is
    // told why) keep the window with its name and changes; Save to a file saves
    // and closes; Discard closes and writes nothing. Then the help window.
    using Unsaved = Host::ModelWindowPrompts::Unsaved;
    const std::string changed = newModel();
    dropAt(gain, changed, {60, 60});
    const QString kept = directory.filePath("kept.tdlib.json");
    const std::vector<std::tuple<Unsaved, QString, bool>> answers{
        {Unsaved::Cancel, "", false},
        {Unsaved::Save, "", false},
        {Unsaved::Save, "/proc/no-such-directory/lost.tdlib.json", false},
        {Unsaved::Save, kept, true},
    };
    for (const auto& [answer, file, closes] : answers) {
        unsavedAnswer = answer;
        saveAnswer = file;
        EXPECT_EQ(window(changed)->close(), closes) << file.toStdString();
        QApplication::processEvents();
        EXPECT_EQ(session.host().systems().isLoaded(changed), !closes);
        if (!closes) {
            EXPECT_TRUE(window(changed) && window(changed)->isVisible() && window(changed)->windowTitle().toStdString() == changed + " *");
        }
    }
    EXPECT_EQ(askedAboutUnsaved.front().toStdString(), changed);
    ASSERT_EQ(failures.size(), 3);
    EXPECT_TRUE(failures.back().contains("lost.tdlib.json")) << failures.back().toStdString();
    EXPECT_TRUE(QFileInfo::exists(kept) && !window("kept"));
    EXPECT_FALSE(session.host().systems().isLoaded("lost") || session.host().systems().isLoaded("kept"));

    const std::string other = newModel();
    dropAt(sum, other, {20, 20});
    unsavedAnswer = Unsaved::Discard;
    EXPECT_TRUE(window(other)->close());
    QApplication::processEvents();
    EXPECT_TRUE(!session.host().systems().isLoaded(other) && askedAboutUnsaved.size() == 5);

    // Help, Library Browser Help: the README's first five minutes, nothing
    // after them and no picture links; the host's help and the block help
    // share the window. (What the dialogs show: the host's tests; the browser
    // opening and closing them: BlockActionsTest.)
    const std::string docroot = call("docroot", {}, 1).outputs.front().toString();
    ASSERT_TRUE(call("helpview", {HostValue::string(docroot + "/toolbox/tandril/helptargets.map"),
                                  HostValue::string("librarybrowsergui")}).ok);
    Host::HelpWindow* help = windows().helpWindow();
    ASSERT_TRUE(help && help->isVisible() && help->windowTitle() == "Library Browser Help");
    for (const auto& [text, shown] : {std::pair{"The first five minutes", true}, {"The command line", false},
                                      {"screenshots/", false}})
        EXPECT_EQ(help->plainText().contains(text), shown) << text;
    EXPECT_TRUE(call("tdhelp", {}).ok && help->windowTitle() == "Tandril Help");
    EXPECT_TRUE(call("private_td_show_block_help", {HostValue::string(gain)}).ok);
    EXPECT_TRUE(help->windowTitle() == "Help: Gain" && help->plainText().contains("Multiplies its input by a constant."));
}

} // namespace
} // namespace LibraryBrowser::Testing
