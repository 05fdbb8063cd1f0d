#include <base/inContextAlias.h>
#include <base/inInit.imp>
#include <base/inVariable.h>
#include <base/internal/testing/testSettings.h>
#include <base/krInitPackages.h>

#include <string>

template class Kr::InInit<KrInit::testing>;

static Kr::InInit<KrInit::testing> package;

static const Kr::InContextAlias directoryAlias("testing.directory", nullptr, "KR_TEST_DIR");
static const Kr::InVariable<std::string> directory(package, "testing.directory", "",
                                                   "Where tests have their files");

static const Kr::InContextAlias messagesAlias("testing.messages", nullptr, "KR_RUN_TEST_MSGS");
static const Kr::InVariable<bool> messages(package, "testing.messages", false,
                                           "Show what tests log as it comes");

void KrInit::testing::start()
{
    Kr::TestSettings::getInstance() = {directory.getValue(), messages.getValue()};
}

void KrInit::testing::stop()
{
    Kr::TestSettings::getInstance() = {};
}
