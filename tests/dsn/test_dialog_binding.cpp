// The control table both ways: an attribute list fills the widgets, the
// widgets give back a list in table order; defaults, fall-backs, toggles,
// drop-down lists, the masked password and the dependent controls.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "dialog_fixture.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/controltable.h"
#include "dsn/protect_impl.h"

#include <Xm/ComboBox.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

namespace
{

// A list from pairs, through the setup library's own parser.
nd *listOf(const std::vector<std::pair<std::string, std::string>> &pairs)
{
    std::string attrs;
    for (const auto &[k, v] : pairs)
        attrs += k + "=" + v + '\0';
    attrs += '\0';
    nd *head = nullptr;
    convertAttributeStringToLinkedList(&head, attrs.data());
    return head;
}
std::vector<std::pair<std::string, std::string>> pairsOf(const nd *head)
{
    std::vector<std::pair<std::string, std::string>> out;
    for (; head != nullptr; head = head->next)
        out.emplace_back(head->key, head->value);
    return out;
}
std::map<std::string, std::string> readBack()
{
    EXPECT_EQ(populateLinkedListFromUI(), 1);
    std::map<std::string, std::string> values;
    for (const auto &[k, v] : pairsOf(keyValNodeHeadL))
        values[k] = v;
    return values;
}
Widget row(const char *key)
{
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++)
        if (std::strcmp(iniids[i], key) == 0)
            return iddlgname[i];
    return nullptr;
}

// The widget of each row, by name, and its kind by class.
const char *const controlNames[ZU_DSN_CONTROL_COUNT] = {"txtSybDSNAme",
                                                        "txtSybDesc",
                                                        "txtSybNetAddr",
                                                        "txtSybDBName",
                                                        "txtappcodepage",
                                                        "cmbSybCursPos",
                                                        "txtSybDefBufSz",
                                                        "txtInitializationString",
                                                        "cmbSybCodePConvErrors",
                                                        "Application Using Threads",
                                                        "Enable Quoted Identifiers",
                                                        "Enable Describe Parameter",
                                                        "Truncate Time Type Fractions",
                                                        "txtSybDBList",
                                                        "txtUserNameSectab",
                                                        "txtSybWorkstationID",
                                                        "txtSybCharset",
                                                        "txtSybAppName",
                                                        "txtSybLang",
                                                        "cbAuthMethodSectab",
                                                        "txtServicePrnNameSectab",
                                                        "txtGssLibSectab",
                                                        "cbselmethod",
                                                        "cbprepmethod",
                                                        "txtfetcharray",
                                                        "txtpacsize",
                                                        "txtconcachesize",
                                                        "Load Balancing",
                                                        "txtaltserv",
                                                        "txtconretcnt",
                                                        "txtconretdel",
                                                        "cbEncryptMethodSectab",
                                                        "Validate Server Certificate",
                                                        "txtTrustStoreSectab",
                                                        "txtTrustStorePwdSecTab",
                                                        "txtHostNameCertSectab",
                                                        "txtLoginTimeout",
                                                        "txtQueryTimeout"};

} // namespace

TEST_F(DialogTabs, BindingEveryRowHoldsItsWidgetOfTheRightKind)
{
    showDialog();
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++) {
        Widget w = iddlgname[i];
        ASSERT_NE(w, nullptr) << iniids[i];
        EXPECT_STREQ(XtName(w), controlNames[i]) << iniids[i];
        switch (idtype[i]) {
        case ZU_CTRL_TEXT:
        case ZU_CTRL_PROTECTED:
            EXPECT_TRUE(XmIsTextField(w) || XmIsText(w)) << iniids[i];
            break;
        case ZU_CTRL_DROPDOWN:
            EXPECT_TRUE(XmIsComboBox(w)) << iniids[i];
            break;
        case ZU_CTRL_TOGGLE:
            EXPECT_TRUE(XmIsToggleButton(w)) << iniids[i];
            break;
        default:
            ADD_FAILURE() << "kind " << idtype[i];
        }
    }
    EXPECT_EQ(idtype[ZU_IDX_TRUSTSTORE_PASSWORD], ZU_CTRL_PROTECTED);
}

TEST_F(DialogTabs, BindingUntouchedDialogGivesTheDefaultsInTableOrder)
{
    showDialog();
    ASSERT_EQ(populateLinkedListFromUI(), 1);
    const std::vector<std::pair<std::string, std::string>> want = {{"DSN", ""},
                                                                   {"Description", ""},
                                                                   {"NetworkAddress", ""},
                                                                   {"Database", ""},
                                                                   {"IANAAppCodePage", "4"},
                                                                   {"RaiserrorPositionBehavior", "0"},
                                                                   {"DefaultLongDataBuffLen", "1024"},
                                                                   {"InitializationString", ""},
                                                                   {"ReportCodePageConversionErrors", "0"},
                                                                   {"ApplicationUsingThreads", "1"},
                                                                   {"EnableQuotedIdentifiers", "0"},
                                                                   {"EnableDescribeParam", "0"},
                                                                   {"TruncateTimeTypeFractions", "0"},
                                                                   {"Databases", ""},
                                                                   {"LogonID", ""},
                                                                   {"WorkStationID", ""},
                                                                   {"Charset", ""},
                                                                   {"ApplicationName", ""},
                                                                   {"Language", ""},
                                                                   {"AuthenticationMethod", "0"},
                                                                   {"ServicePrincipalName", ""},
                                                                   {"GSSClient", "native"},
                                                                   {"SelectMethod", "0"},
                                                                   {"OptimizePrepare", "1"},
                                                                   {"ArraySize", "50"},
                                                                   {"PacketSize", "0"},
                                                                   {"CursorCacheSize", "1"},
                                                                   {"LoadBalancing", "0"},
                                                                   {"AlternateServers", ""},
                                                                   {"ConnectionRetryCount", "0"},
                                                                   {"ConnectionRetryDelay", "3"},
                                                                   {"EncryptionMethod", "0"},
                                                                   {"ValidateServerCertificate", "1"},
                                                                   {"TrustStore", ""},
                                                                   {"TrustStorePassword", ""},
                                                                   {"HostNameInCertificate", ""},
                                                                   {"LoginTimeout", "15"},
                                                                   {"QueryTimeout", "0"}};
    EXPECT_EQ(pairsOf(keyValNodeHeadL), want);
}

TEST_F(DialogTabs, BindingListToWidgetsAndBackInTableOrder)
{
    showDialog();
    driDsnNameL = PopulateDriverDSNStruct(nullptr, nullptr, 2, const_cast<char *>("old"), nullptr, 0, nullptr);
    ASSERT_NE(driDsnNameL, nullptr);
    // Keys in another order and case than the table's, one key without a
    // row, every row given a value other than its default.
    keyValNodeHeadL = listOf({{"QueryTimeout", "30"},
                              {"description", "sales data"},
                              {"DSN", "tabsdsn"},
                              {"NetworkAddress", "db1,5000"},
                              {"Database", "pubs"},
                              {"IANAAppCodePage", "106"},
                              {"RaiserrorPositionBehavior", "1"},
                              {"DefaultLongDataBuffLen", "2048"},
                              {"InitializationString", "set rowcount 5"},
                              {"ReportCodePageConversionErrors", "2"},
                              {"ApplicationUsingThreads", "0"},
                              {"EnableQuotedIdentifiers", "1"},
                              {"EnableDescribeParam", "yes"},
                              {"TruncateTimeTypeFractions", "1"},
                              {"Databases", "a,b"},
                              {"LogonID", "alice"},
                              {"WorkStationID", "ws7"},
                              {"Charset", "utf8"},
                              {"ApplicationName", "tabs"},
                              {"Language", "us_english"},
                              {"AuthenticationMethod", "4"},
                              {"ServicePrincipalName", "svc/db1"},
                              {"GSSClient", "/usr/lib/libgssapi_krb5.so.2"},
                              {"SelectMethod", "1"},
                              {"OptimizePrepare", "3"},
                              {"ArraySize", "100"},
                              {"PacketSize", "4096"},
                              {"CursorCacheSize", "8"},
                              {"LoadBalancing", "1"},
                              {"AlternateServers", "db2:5000"},
                              {"ConnectionRetryCount", "2"},
                              {"ConnectionRetryDelay", "9"},
                              {"EncryptionMethod", "1"},
                              {"ValidateServerCertificate", "0"},
                              {"TrustStore", "/etc/ts.pem"},
                              {"TrustStorePassword", "s3cret"},
                              {"HostNameInCertificate", "db1.example"},
                              {"LoginTimeout", "60"},
                              {"UnknownKey", "dropped"}});
    populateUIFromLinkedList();
    EXPECT_EQ(keyValNodeHeadL, nullptr) << "the list is consumed";
    EXPECT_STREQ(driDsnNameL->previousDSN, "tabsdsn");

    // What the user sees.
    EXPECT_EQ(text(row("Description")), "sales data");
    EXPECT_EQ(shown(row("RaiserrorPositionBehavior")), "1 - MS Compatible");
    EXPECT_EQ(shown(row("ReportCodePageConversionErrors")), "2 - Return Warning");
    EXPECT_EQ(shown(row("AuthenticationMethod")), "4 - Kerberos");
    EXPECT_EQ(shown(row("OptimizePrepare")), "3 - Full at Prepare");
    EXPECT_EQ(shown(row("EncryptionMethod")), "1 - SSL Auto");
    EXPECT_FALSE(XmToggleButtonGetState(row("ApplicationUsingThreads")));
    EXPECT_TRUE(XmToggleButtonGetState(row("EnableDescribeParam"))) << "any word but 0 is on";
    EXPECT_EQ(text(row("TrustStorePassword")), "******") << "the field shows asterisks only";
    ASSERT_NE(truststorePasssword, nullptr);
    EXPECT_STREQ(truststorePasssword, "s3cret");
    // Kerberos and SSL turn their dependants on.
    EXPECT_TRUE(XtIsSensitive(row("GSSClient")));
    EXPECT_TRUE(XtIsSensitive(row("ServicePrincipalName")));
    EXPECT_TRUE(XtIsSensitive(row("TrustStore")));
    EXPECT_TRUE(XtIsSensitive(row("TrustStorePassword")));

    // And back: every row in table order, the unknown key gone, the name
    // copied to the record, the password protected.
    XmTextSetString(row("DSN"), const_cast<char *>("newname"));
    ASSERT_EQ(populateLinkedListFromUI(), 1);
    EXPECT_STREQ(driDsnNameL->dsnName, "newname");
    auto pairs = pairsOf(keyValNodeHeadL);
    ASSERT_EQ(pairs.size(), static_cast<size_t>(ZU_DSN_CONTROL_COUNT));
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++)
        EXPECT_EQ(pairs[i].first, iniids[i]);
    std::map<std::string, std::string> got(pairs.begin(), pairs.end());
    EXPECT_EQ(got["DSN"], "newname");
    EXPECT_EQ(got["Description"], "sales data");
    EXPECT_EQ(got["IANAAppCodePage"], "106");
    EXPECT_EQ(got["RaiserrorPositionBehavior"], "1");
    EXPECT_EQ(got["ReportCodePageConversionErrors"], "2");
    EXPECT_EQ(got["ApplicationUsingThreads"], "0");
    EXPECT_EQ(got["EnableDescribeParam"], "1");
    EXPECT_EQ(got["AuthenticationMethod"], "4");
    EXPECT_EQ(got["SelectMethod"], "1");
    EXPECT_EQ(got["OptimizePrepare"], "3");
    EXPECT_EQ(got["LoadBalancing"], "1");
    EXPECT_EQ(got["AlternateServers"], "db2:5000");
    EXPECT_EQ(got["EncryptionMethod"], "1");
    EXPECT_EQ(got["ValidateServerCertificate"], "0");
    EXPECT_EQ(got["GSSClient"], "/usr/lib/libgssapi_krb5.so.2");
    EXPECT_EQ(got["QueryTimeout"], "30");
    EXPECT_EQ(got.count("UnknownKey"), 0u);
    const std::string stored = got["TrustStorePassword"];
    ASSERT_FALSE(stored.empty());
    EXPECT_EQ(static_cast<unsigned char>(stored[0]), 0xFF);
    EXPECT_EQ(stored.size(), 1 + 2 * std::strlen("s3cret")) << "marker and two hex digits a byte";
    unsigned char *clear = nullptr;
    ASSERT_EQ(
        getDehexifiedDecryptedValue(reinterpret_cast<unsigned char *>(const_cast<char *>(stored.c_str())), &clear), 0);
    EXPECT_STREQ(reinterpret_cast<char *>(clear), "s3cret");
    std::free(clear);

    // A protected value read back in shows the same clear text.
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
    XmTextSetString(row("TrustStorePassword"), const_cast<char *>(""));
    keyValNodeHeadL = listOf({{"TrustStorePassword", stored}});
    populateUIFromLinkedList();
    ASSERT_NE(truststorePasssword, nullptr);
    EXPECT_STREQ(truststorePasssword, "s3cret");
}

TEST_F(DialogTabs, BindingFallBackDefaultsEmptyTogglesAndLongValues)
{
    showDialog();
    // Out of range falls to the first row, not to the default; no key keeps
    // the default; an empty toggle value is on.
    keyValNodeHeadL = listOf({{"OptimizePrepare", "9"},
                              {"EncryptionMethod", "7"},
                              {"ApplicationUsingThreads", ""},
                              {"LoadBalancing", ""},
                              {"Description", std::string(1500, 'd')}});
    populateUIFromLinkedList();
    EXPECT_EQ(shown(row("OptimizePrepare")), "0 - None");
    EXPECT_EQ(shown(row("SelectMethod")), "0 - Cursor");
    EXPECT_EQ(shown(row("EncryptionMethod")), "0 - No Encryption");
    EXPECT_FALSE(XtIsSensitive(row("TrustStore")));
    // A 2,000-character entry is saved as its first 1,023.
    XmTextSetString(row("Description"), const_cast<char *>(std::string(2000, 'x').c_str()));
    auto values = readBack();
    EXPECT_EQ(values["OptimizePrepare"], "0");
    EXPECT_EQ(values["ApplicationUsingThreads"], "1");
    EXPECT_EQ(values["LoadBalancing"], "1");
    EXPECT_EQ(values["Description"], std::string(1023, 'x'));

    // A DSN without the key shows the default "1 - Partial".
    showDialog();
    EXPECT_EQ(shown(row("OptimizePrepare")), "1 - Partial");
}

TEST_F(DialogTabs, BindingAuthenticationAndEncryptionMethodsDriveTheirFields)
{
    showDialog();
    Widget kerberosFields[] = {row("GSSClient"), row("ServicePrincipalName")};
    Widget sslFields[] = {row("ValidateServerCertificate"), row("TrustStore"), row("TrustStorePassword"),
                          row("HostNameInCertificate")};
    for (Widget w : kerberosFields)
        EXPECT_FALSE(XtIsSensitive(w));
    for (Widget w : sslFields)
        EXPECT_FALSE(XtIsSensitive(w));

    keyValNodeHeadL = listOf({{"AuthenticationMethod", "4"}, {"EncryptionMethod", "1"}});
    populateUIFromLinkedList();
    for (Widget w : kerberosFields)
        EXPECT_TRUE(XtIsSensitive(w));
    for (Widget w : sslFields)
        EXPECT_TRUE(XtIsSensitive(w));

    keyValNodeHeadL = listOf({{"AuthenticationMethod", "1"}, {"EncryptionMethod", "0"}});
    populateUIFromLinkedList();
    EXPECT_EQ(shown(row("AuthenticationMethod")), "1 - Encrypt Password");
    for (Widget w : kerberosFields)
        EXPECT_FALSE(XtIsSensitive(w));
    for (Widget w : sslFields)
        EXPECT_FALSE(XtIsSensitive(w));
    auto values = readBack();
    EXPECT_EQ(values["AuthenticationMethod"], "1");
    EXPECT_EQ(values["EncryptionMethod"], "0");
}

TEST_F(DialogTabs, BindingPasswordFieldKeepsClearTextThroughEdits)
{
    showDialog();
    Widget field = row("TrustStorePassword");
    XmTextFieldSetString(field, const_cast<char *>("secret"));
    EXPECT_EQ(text(field), "******");
    ASSERT_NE(truststorePasssword, nullptr);
    EXPECT_STREQ(truststorePasssword, "secret");
    // Paste over a selected range replaces it in the clear text.
    XmTextFieldReplace(field, 1, 3, const_cast<char *>("XYZ"));
    EXPECT_STREQ(truststorePasssword, "sXYZret");
    EXPECT_EQ(text(field), "*******");
    // Deleting a range removes it from the clear text too.
    XmTextFieldReplace(field, 0, 2, const_cast<char *>(""));
    EXPECT_STREQ(truststorePasssword, "YZret");
    XmTextFieldInsert(field, 5, const_cast<char *>("!"));
    EXPECT_STREQ(truststorePasssword, "YZret!");
    EXPECT_EQ(text(field), "******");
    // Emptied and typed again.
    XmTextFieldSetString(field, const_cast<char *>(""));
    EXPECT_STREQ(truststorePasssword, "");
    XmTextFieldSetString(field, const_cast<char *>("p"));
    EXPECT_STREQ(truststorePasssword, "p");
}
