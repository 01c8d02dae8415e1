#include "HostTestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// open_system given a saved model's file opens that model again, unlocked,
// with its blocks; a damaged file opens nothing and the message names it.
TEST(OpenSavedModelTest, ASavedModelOpensFromItsFileAndADamagedOneSaysWhich)
{
    HostFixture fixture{HostOptions::bundledRoot()};
    auto run = [&](const std::string& command, std::vector<HostValue> inputs, int outputs = 0) {
        return fixture.host().callWithTrap(command, outputs, inputs);
    };
    const auto s = [](const std::string& text) { return HostValue::string(text); };
    QTemporaryDir out;
    const std::string file = (out.path() + "/plant.tdlib.json").toStdString();
    const std::string name = run("private_td_new_system", {s("Model")}, 1).outputs.at(0).toString();
    ASSERT_TRUE(run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s(name)}).ok);
    ASSERT_TRUE(run("save_system", {s(name), s(file)}).ok);
    ASSERT_TRUE(run("close_system", {s(name)}).ok);
    ASSERT_FALSE(fixture.host().systems().isLoaded(name));

    const auto opened = run("open_system", {s(file)});
    ASSERT_TRUE(opened.ok) << opened.errorMessage;
    const OpenSystem* plant = fixture.host().systems().find(name);
    ASSERT_NE(plant, nullptr);
    EXPECT_FALSE(plant->locked);
    ASSERT_EQ(plant->document.blocks.size(), 1u);
    EXPECT_EQ(plant->document.blocks[0].name, "Gain");

    const QString bad = out.path() + "/bad.tdlib.json";
    QFile damaged(bad);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("{ not json");
    damaged.close();
    const auto failed = run("open_system", {s(bad.toStdString())});
    EXPECT_FALSE(failed.ok);
    EXPECT_NE(failed.errorMessage.find("bad.tdlib.json"), std::string::npos) << failed.errorMessage;
}

} // namespace

} // namespace LibraryBrowser::Host::Testing
