// The embedded host's windows: the targets of the browser's block actions.
// Commands go to the host as the browser sends them; what is checked is what
// a user would see in the model windows and dialogs.

#include "PageTestSupport.h"

#include "ModelWindows.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

const char* const gain = "arithmetica/Basic Operations/Gain";
const char* const sum = "arithmetica/Basic Operations/Sum";

class ModelWindowsTest : public ::testing::Test {
protected:
    void SetUp() override { session.host().showWindows(); }

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
    Host::ModelWindow* window(const std::string& name) { return session.host().modelWindows()->window(name); }
    std::vector<QDialog*> dialogs() const
    {
        std::vector<QDialog*> shown;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QDialog*>(widget); dialog && dialog->isVisible())
                shown.push_back(dialog);
        return shown;
    }
    static QStringList labelsOf(QDialog* dialog)
    {
        QStringList texts;
        for (const QLabel* label : dialog->findChildren<QLabel*>())
            texts.append(label->text());
        return texts;
    }

    ExampleRootSession session;
};

TEST_F(ModelWindowsTest, ANewModelOpensAWindowThatShowsAddedBlocksAndUnsavedChanges)
{
    const std::string model = newModel();
    Host::ModelWindow* shown = window(model);
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->isVisible());
    EXPECT_EQ(shown->windowTitle().toStdString(), model);

    EXPECT_TRUE(call("private_td_add_block", {HostValue::string(gain), HostValue::string(model)}).ok);
    EXPECT_TRUE(call("private_td_add_block", {HostValue::string(gain), HostValue::string(model)}).ok);
    EXPECT_EQ(shown->blockNames(), (QStringList{"Gain", "Gain1"}));
    EXPECT_EQ(shown->windowTitle().toStdString(), model + " *");
}

TEST_F(ModelWindowsTest, TheCurrentSystemIsTheOneWhoseWindowWasActivatedLast)
{
    const std::string first = newModel();
    const std::string second = newModel();
    auto current = [&] { return call("private_td_get_current_open_mdl", {}, 3).outputs.front().toString(); };
    EXPECT_EQ(current(), second);
    window(first)->activateWindow();
    QApplication::setActiveWindow(window(first));
    QApplication::processEvents();
    EXPECT_EQ(current(), first);

    // A library opened from the path is shown locked, and a drop onto it fails
    // without changing it.
    EXPECT_TRUE(call("open_system", {HostValue::string("arithmetica")}).ok);
    const auto answer = call("private_td_get_current_open_mdl", {}, 3);
    EXPECT_EQ(answer.outputs[0].toString(), "arithmetica");
    EXPECT_EQ(answer.outputs[1].toString(), "Library");
    EXPECT_TRUE(answer.outputs[2].scalar() != 0);
    const QStringList before = window("arithmetica")->blockNames();
    EXPECT_FALSE(call("private_td_add_block", {HostValue::string(gain), HostValue::string("arithmetica")}).ok);
    EXPECT_EQ(window("arithmetica")->blockNames(), before);
    EXPECT_TRUE(window("arithmetica")->windowTitle().contains("locked"));
}

TEST_F(ModelWindowsTest, BlockDialogsShowDescriptionAndParametersAndCloseTogether)
{
    EXPECT_TRUE(call("private_td_open_block_dialog", {HostValue::string(gain), HostValue::string("params")}).ok);
    EXPECT_TRUE(call("private_td_show_block_help", {HostValue::string(sum)}).ok);
    EXPECT_FALSE(call("private_td_show_block_help", {HostValue::string("arithmetica/No Such Block")}).ok);
    const std::vector<QDialog*> shown = dialogs();
    ASSERT_EQ(shown.size(), 2u);
    QStringList all;
    for (QDialog* dialog : shown)
        all += labelsOf(dialog);
    EXPECT_TRUE(all.contains("Element-wise (K.*u)"));
    EXPECT_TRUE(all.contains("<b>Gain</b>"));
    EXPECT_TRUE(all.contains("<b>Sum</b>"));

    EXPECT_TRUE(call("private_td_close_block_dialogs", {}).ok);
    QApplication::processEvents();
    EXPECT_TRUE(dialogs().empty());
}

} // namespace
} // namespace LibraryBrowser::Testing
