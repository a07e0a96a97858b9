// Error messages: catalog texts by number, numbered parameters, narrow
// parameters that do not decode, the report order, and the list operations
// that work on texts.
#include <gtest/gtest.h>

#include <nl_types.h>

#include <string>

#include "core/accelerator.h"
#include "core/errorlist.h"
#include "platform/catalog.h"
#include "platform/ram.h"

namespace {
class ErrorTexts : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
        bosLoadResourceDLL("uxutl24", 0, nullptr, &uses);
    }
    static void TearDownTestSuite() { bosFreeResourceDLL(0, &uses); }
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors); }
    void TearDown() override { ZuErrorKeeper::giveUpErrorList(); }
    ZuErrorList errors{nullptr, 1};
    static int uses;
};
int ErrorTexts::uses = 0;
}  // namespace

TEST_F(ErrorTexts, MessagesComeFromTheCatalogWithTheirParameters)
{
    ASSERT_NE(CatFD, ZU_NO_CATALOG);
    addError(1523) << "/lib/x.so" << "no such file";
    EXPECT_STREQ(ZuErrorKeeper::getLastError()->getErrorText(),
                 "Unable to load the shared library /lib/x.so: no such file");
    addError(2737) << "ignored";
    EXPECT_STREQ(ZuErrorKeeper::getLastError()->getErrorText(), "Character conversion failed")
        << "a message without placeholders stays as it is";
    addWarning(9999);
    EXPECT_STREQ(ZuErrorKeeper::getLastError()->getErrorText(), "9999") << "a number the catalog lacks";
    ramAddMemoryError();
    EXPECT_STREQ(ZuErrorKeeper::getLastError()->getErrorText(), "Out Of Memory");
}

TEST_F(ErrorTexts, EveryNumberTheLibraryRaisesHasItsText)
{
    for (unsigned short n : {1523, 2700, 2703, 2708, 2716, 2735, 2736, 2737, 2738, 2739, 30190}) {
        char text[512];
        LoadString(nullptr, n, text, sizeof text);
        EXPECT_NE(std::string(text), std::to_string(n)) << n;
    }
    char state[16];
    EXPECT_EQ(winGetString(4, state, sizeof state), 5);
    EXPECT_STREQ(state, "01004") << "state ids resolve through the catalog";
}

TEST_F(ErrorTexts, NarrowParametersThatAreNotUtf8FallBackToTheLocale)
{
    ZuError* e = ZuErrorKeeper::addError(new ZuError(1, "value %s1.", ZU_CP_UTF8, ErrTypeError, 0, 0));
    *e << "ab\xFF\xFE";  // not UTF-8; the C locale takes what it can read
    EXPECT_STREQ(e->getErrorText(), "value ab.");
    EXPECT_EQ(errors.getCount(), 1u) << "the failed UTF-8 decoding left no error behind";
    ZuError* ok = ZuErrorKeeper::addError(new ZuError(2, "%s1!", ZU_CP_UTF8, ErrTypeError, 0, 0));
    *ok << "\xC3\xA9t\xC3\xA9";
    EXPECT_STREQ(ok->getErrorText(), "\xC3\xA9t\xC3\xA9!");
    ok->appendText(" more %s1");
    *ok << "again";
    EXPECT_STREQ(ok->getErrorText(), "\xC3\xA9t\xC3\xA9! more again") << "appended text counts from 1";
}

TEST_F(ErrorTexts, ReportOrderPutsLinkFailuresFirstAndDriverManagerLast)
{
    ZuError link(1, "l", ZU_CP_LOCALE, ErrTypeError, 0, 0), general(2, "g", ZU_CP_LOCALE, ErrTypeError, 0, 0),
        im(3, "i", ZU_CP_LOCALE, ErrTypeError, 0, 0), early(4, "e", ZU_CP_LOCALE, ErrTypeError, 0, 0);
    link.setState("08S01");
    im.setState("IM002");
    EXPECT_LT(link.compare(&general), 0);
    // The right-hand error's state text is read from the left-hand error, so
    // a link failure on the right is not seen as one: the order depends on
    // the side, and is kept so.
    EXPECT_LT(general.compare(&link), 0);
    EXPECT_LT(general.compare(&im), 0) << "HY000 lies between 03 and HZ";
    EXPECT_EQ(im.compare(&im), -1);
    early.setRowColumn(1, 0);
    general.setRowColumn(2, 0);
    EXPECT_LT(early.compare(&general), 0) << "rows first";
    EXPECT_STREQ(general.getInterfaceCode(), "HY000");
    EXPECT_STREQ(MemoryError.getInterfaceCode(), "HY001");
}

TEST_F(ErrorTexts, ListOperationsOnTexts)
{
    addError(2737);
    addWarning(2735);
    ramAddMemoryError();
    ZuErrorList copy(nullptr, 1);
    copy.copyErrorsFromList(&errors);
    EXPECT_EQ(copy.getCount(), 2u);
    EXPECT_TRUE(copy.isMemoryErrorPending());
    EXPECT_EQ(errors.getCount(), 2u) << "the source is left alone";

    errors.changeErrorsToWarnings();
    EXPECT_FALSE(errors.isMemoryErrorPending());
    EXPECT_EQ(errors.getErrorCount(), 0);
    EXPECT_EQ(errors.getWarningCount(), 3);
    EXPECT_STREQ(errors.getLastError()->getErrorText(), "Out Of Memory");
    EXPECT_EQ(errors.getLastError()->getErrorNumber(), 2);

    ZuString all;
    ASSERT_EQ(all.initialize(""), 0);
    ASSERT_EQ(copy.concatErrors(&all, "; "), 0);
    EXPECT_EQ(std::string(all.getData(), all.getLength()),
              "Character conversion failed; String data, right truncated: the converted text did not fit");
    EXPECT_EQ(&appendTextToErrorAtPos(2735, 7), &DummyError);
}

TEST_F(ErrorTexts, DialogLabelsGetAKeyOfTheirOwn)
{
    char markers[64];
    EXPECT_STREQ(getMenuAccelerator(markers), "&");
    EXPECT_STREQ(findMenuAccelerator("Save &As"), "&As");
    EXPECT_EQ(findMenuAccelerator("Plain"), nullptr);

    unsigned char bitmap[32] = {};
    char first[64] = "Save";
    char second[64] = "  Send %s";
    char third[64] = "S&top";
    EXPECT_STREQ(makeDialogText(bitmap, first, nullptr, nullptr, sizeof first), "&Save");
    EXPECT_STREQ(makeDialogText(bitmap, second, "mail", nullptr, sizeof second), "  S&end mail")
        << "s is taken: the next free character gets the marker";
    EXPECT_STREQ(makeDialogText(bitmap, third, nullptr, nullptr, sizeof third), "S&top") << "a marker already there stays";
    EXPECT_TRUE(bitmap['t' >> 3] & (1 << ('t' & 7)));
    char full[8] = "abcdefg";
    EXPECT_STREQ(makeDialogText(bitmap, full, nullptr, nullptr, sizeof full), "abcdefg") << "no room: left as it is";
}
