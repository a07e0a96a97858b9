// The attribute list and the record, as the setup library builds them.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "dsn.h"
#include "dsn/odbcenv.h"
#include "platform/ramfault.h"

namespace {

std::vector<std::pair<std::string, std::string>> pairsOf(nd* head)
{
    std::vector<std::pair<std::string, std::string>> out;
    for (nd* n = head; n != nullptr; n = n->next)
        out.emplace_back(n->key, n->value);
    return out;
}

// Builds "k=v\0k=v\0\0" from pieces.
std::string attributeString(const std::vector<std::string>& pairs)
{
    std::string text;
    for (const auto& p : pairs) {
        text += p;
        text.push_back('\0');
    }
    text.push_back('\0');
    return text;
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

}  // namespace

TEST(AttributeString, PairsBecomeNodesInOrderWithTheKeyEndingAtTheFirstEqualsSign)
{
    const std::string attrs = attributeString({"DSN=sales", "Description=a=b", "Empty=", "=lead=x"});
    nd* head = reinterpret_cast<nd*>(0x1);  // overwritten, never read
    convertAttributeStringToLinkedList(&head, attrs.data());
    // "=lead" keeps its leading '=' in the key: the search starts at the
    // key's second character, so a key is never empty.
    EXPECT_EQ(pairsOf(head), (Pairs{{"DSN", "sales"}, {"Description", "a=b"}, {"Empty", ""}, {"=lead", "x"}}));
    head = FreeLinkedList(head);
    EXPECT_EQ(head, nullptr);
}

TEST(AttributeString, EmptyOrNullStringGivesAnEmptyListAndOnePairWithEmptyValueGivesOneNode)
{
    nd* head = reinterpret_cast<nd*>(0x1);
    convertAttributeStringToLinkedList(&head, nullptr);
    EXPECT_EQ(head, nullptr);
    head = reinterpret_cast<nd*>(0x1);
    convertAttributeStringToLinkedList(&head, "\0");
    EXPECT_EQ(head, nullptr);
    const std::string one = attributeString({"Database="});
    convertAttributeStringToLinkedList(&head, one.data());
    EXPECT_EQ(pairsOf(head), (Pairs{{"Database", ""}}));
    FreeLinkedList(head);
}

TEST(AttributeString, OverlongKeysAndValuesAreCutToTheirFieldsAndAPairWithoutEqualsStaysInItsPair)
{
    const std::string longKey(700, 'k');
    const std::string longValue(3000, 'v');
    const std::string attrs = attributeString({longKey + "=" + longValue, "NoEquals", "After=1"});
    nd* head = nullptr;
    convertAttributeStringToLinkedList(&head, attrs.data());
    const Pairs got = pairsOf(head);
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[0].first, std::string(511, 'k'));
    EXPECT_EQ(got[0].second, std::string(1023, 'v'));
    EXPECT_EQ(got[1], (std::pair<std::string, std::string>{"NoEquals", ""}));
    EXPECT_EQ(got[2], (std::pair<std::string, std::string>{"After", "1"}));
    FreeLinkedList(head);
}

TEST(AttributeString, ExhaustedMemoryKeepsThePairsParsedSoFarAndReportsIt)
{
#ifdef HNSYB_FAULT_INJECTION
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    const std::string attrs = attributeString({"A=1", "B=2", "C=3"});
    nd* head = nullptr;
    ramFaultFailNth(2);
    convertAttributeStringToLinkedList(&head, attrs.data());
    ramFaultFailNth(0);
    EXPECT_EQ(pairsOf(head), (Pairs{{"A", "1"}}));
    EXPECT_TRUE(errors.isExistingError());
    FreeLinkedList(head);
    ZuErrorKeeper::giveUpErrorList();
#else
    GTEST_SKIP() << "built without fault injection";
#endif
}

TEST(AttributeList, LookupIsCaseSensitiveAndTheFirstMatchWins)
{
    const std::string attrs = attributeString({"DSN=first", "Database=db", "DSN=second"});
    nd* head = nullptr;
    convertAttributeStringToLinkedList(&head, attrs.data());
    ASSERT_NE(getValueOfKey(head, "DSN"), nullptr);
    EXPECT_STREQ(getValueOfKey(head, "DSN"), "first");
    EXPECT_EQ(getValueOfKey(head, "dsn"), nullptr);
    EXPECT_EQ(getValueOfKey(head, "Missing"), nullptr);
    // The pointer is the node's own field: writing through it changes the list.
    std::strcpy(getValueOfKey(head, "Database"), "other");
    EXPECT_STREQ(head->next->value, "other");
    FreeLinkedList(head);
}

TEST(AttributeList, AddNodeAppendsAtTheTailAndEndsTheListThere)
{
    nd* head = nullptr;
    nd* a = static_cast<nd*>(std::malloc(sizeof(nd)));
    nd* b = static_cast<nd*>(std::malloc(sizeof(nd)));
    std::strcpy(a->key, "A");
    std::strcpy(a->value, "1");
    std::strcpy(b->key, "B");
    std::strcpy(b->value, "2");
    b->next = reinterpret_cast<nd*>(0x1);  // whatever it held, the tail ends the list
    AddNodeToList(&head, a);
    AddNodeToList(&head, b);
    EXPECT_EQ(pairsOf(head), (Pairs{{"A", "1"}, {"B", "2"}}));
    EXPECT_EQ(b->next, nullptr);
    FreeLinkedList(head);
}

TEST(DriverRecord, DriverPathComesFromTheDriverListAndTheFilePathOnlyForAFileDataSource)
{
    PrivateOdbc odbc;
    char dsn[] = "sales";
    driverDSNName* record = PopulateDriverDSNStruct(kTestDriver, nullptr, 1, dsn, nullptr, 1, "/tmp/x.dsn");
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(record->driverName, kTestDriver);
    EXPECT_STREQ(record->driverPath, kSqliteDriverPath);
    EXPECT_STREQ(record->dsnName, "sales");
    EXPECT_STREQ(record->previousDSN, "");
    EXPECT_EQ(record->request, 1);
    EXPECT_EQ(record->isFileDSN, 1);
    EXPECT_STREQ(record->fileDSNPath, "/tmp/x.dsn");
    // The record begins with the driver's section name.
    EXPECT_STREQ(reinterpret_cast<const char*>(record), kTestDriver);
    FreeDriverDsnStruct(record);

    // isFileDSN other than exactly 1 leaves the file path empty.
    record = PopulateDriverDSNStruct("NoSuchDriver", nullptr, 2, nullptr, nullptr, 2, "/tmp/x.dsn");
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(record->fileDSNPath, "");
    EXPECT_STREQ(record->driverPath, "");
    EXPECT_STREQ(record->dsnName, "");
    EXPECT_EQ(record->isFileDSN, 2);
    FreeDriverDsnStruct(record);
    FreeDriverDsnStruct(nullptr);
}

TEST(DriverRecord, OverlongNamesAreCutToTheirFields)
{
    PrivateOdbc odbc;
    std::string name(5000, 'n');
    std::string path(5000, 'p');
    driverDSNName* record = PopulateDriverDSNStruct(name.c_str(), nullptr, 1, name.data(), nullptr, 1, path.c_str());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(std::string(record->driverName), std::string(1023, 'n'));
    EXPECT_EQ(std::string(record->dsnName), std::string(1023, 'n'));
    EXPECT_EQ(std::string(record->fileDSNPath), std::string(1023, 'p'));
    FreeDriverDsnStruct(record);
}
