// The high-level builders of the family's dialogs: what they register, and
// the dependencies that dependedMethodChanged applies over the registry.
#include <gtest/gtest.h>

#include "dialog_fixture.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/controltable.h"

#include <Xm/ComboBox.h>
#include <Xm/Form.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

TEST_F(DialogTabs, RegistryBuildersRegisterKindsAndDriveTheSecurityGroup)
{
    IDNameWgtIndx = 0;
    for (auto& e : IDNameWgt)
        e = {};
    Widget form = createForm(top_, "registryForm");
    ASSERT_NE(form, nullptr);
    Widget made[16] = {};
    Widget* cursor = made;
    const char* const methods[] = {"0 - No Encryption", "1 - SSL Auto"};
    const ZuCtrlRect label = {0, 25, 5, 170}, control = {0, 25, 170, 375};
    Widget method = createDropDownList(form, 7320, "method", "EncryptionMethod", methods, 2, methods[0], label, control,
                                       dependedMethodChanged, nullptr, cursor);
    Widget validate =
        createToggleButton(form, 7321, True, "ValidateServerCertificate", control, dependedMethodChanged, nullptr, cursor);
    Widget trust = createLabelAndText(form, 7322, "trust", "TrustStore", nullptr, label, control, nullptr, nullptr,
                                      cursor);
    Widget password = createLabelAndText(form, 7323, "password", "TrustStorePassword", nullptr, label, control, nullptr,
                                         nullptr, cursor);
    Widget host = createLabelAndText(form, 7324, "host", "HostNameInCertificate", nullptr, label, control, nullptr,
                                     nullptr, cursor);
    Widget keyStore = createLabelAndText(form, 7325, "keystore", "KeyStore", nullptr, label, control, nullptr, nullptr,
                                         cursor);
    ASSERT_TRUE(method && validate && trust && password && host && keyStore);
    // Label and control of each row went through the cursor.
    EXPECT_EQ(cursor - made, 11);
    EXPECT_EQ(made[1], method);
    EXPECT_EQ(made[2], validate);

    ASSERT_EQ(IDNameWgtIndx, 6);
    EXPECT_EQ(IDNameWgt[0].kind, ZU_CTRL_DROPDOWN);
    EXPECT_EQ(IDNameWgt[1].kind, ZU_CTRL_TOGGLE);
    EXPECT_EQ(IDNameWgt[2].kind, ZU_CTRL_TEXT);
    EXPECT_EQ(IDNameWgt[3].kind, ZU_CTRL_PROTECTED) << "password labels register protected values";
    EXPECT_STREQ(IDNameWgt[3].key, "TrustStorePassword");

    // All groups: no encryption greys every member.
    dependedMethodChanged(nullptr, nullptr, nullptr);
    for (Widget w : {validate, trust, password, host, keyStore})
        EXPECT_FALSE(XtIsSensitive(w)) << XtName(w);

    // The method turns on: the toggle is on too, so all members follow.
    XmString ssl = XmStringCreateLocalized(const_cast<char*>("1 - SSL Auto"));
    XmComboBoxSelectItem(method, ssl);
    XmStringFree(ssl);
    dependedMethodChanged(method, &IDNameWgt[0], nullptr);
    EXPECT_TRUE(XtIsSensitive(validate));
    EXPECT_TRUE(XtIsSensitive(trust));
    EXPECT_TRUE(XtIsSensitive(password));
    EXPECT_TRUE(XtIsSensitive(host));
    // With an entry given the walk stops after 7324, so 7325 keeps its state.
    EXPECT_FALSE(XtIsSensitive(keyStore));

    // Through the toggle's own callback: its registry entry is the data.
    XmToggleButtonSetState(validate, False, True);
    EXPECT_TRUE(XtIsSensitive(validate));
    EXPECT_FALSE(XtIsSensitive(trust));
    EXPECT_FALSE(XtIsSensitive(password));

    // A full walk reaches the key store rows, which need the method only.
    dependedMethodChanged(nullptr, nullptr, nullptr);
    EXPECT_TRUE(XtIsSensitive(keyStore));
    XtDestroyWidget(form);
    IDNameWgtIndx = 0;
    for (auto& e : IDNameWgt)
        e = {};
}
