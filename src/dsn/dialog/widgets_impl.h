/*
 * The dialog's widgets, one global per widget under its own name (kind and
 * role: txtSybDesc, lblSybDesc, cmbSybCursPos ...).  They are set by the tab
 * builders during create_shell1 and stay valid while shell1 lives; nothing
 * here owns them (the toolkit does).  shell1 itself is the lifecycle's.
 *
 * Internal to the library: the lifecycle reads lblSybDSName and
 * txtSybDSNAme (the DSN name field, entry 0 of the control table).
 */
#ifndef HNSYB_DSN_DIALOG_WIDGETS_IMPL_H
#define HNSYB_DSN_DIALOG_WIDGETS_IMPL_H

#include <X11/Intrinsic.h>

// Main form, notebook and button row.
extern Widget frmSybMain, tmSyb, btnTestConnect, btnOK, btnCancel, btnApply;

// General.
extern Widget frmSybGen, btnSybGen, btnSybgenHelp;
extern Widget lblSybDSName, txtSybDSNAme, lblSybDesc, txtSybDesc, lblSybNetAddr, txtSybNetAddr, lblSybDBName,
    txtSybDBName;

// Advanced.
extern Widget frmAdvSybase, btnSybAdvanced, btnAdvHelp;
extern Widget lblSybCursPos, cmbSybCursPos, lblSybDefBufSz, txtSybDefBufSz, lblSybIniString, txtInitializationString,
    lblSybCodePConvErrors, cmbSybCodePConvErrors;
extern Widget tgSybThreads, tgSybQuotedIdentifiers, tgSybDescParameters, tgSybTruncTimeType;
extern Widget lbLoginTimeout, txtLoginTimeout, lbQueryTimeout, txtQueryTimeout, lbianaapp, txtappcodepage;

// Connection.
extern Widget frmSybConnection, btnSybConnection, btnSybConHelp;
extern Widget lblSybDBList, txtSybDBList, lblSybWorkstationID, txtSybWorkstationID, lblSybCharset, txtSybCharset,
    lblSybAppName, txtSybAppName, lblSybLang, txtSybLang;

// Security (built by createSecurityTab).
extern Widget frmSecurity, btnSecurity, btnSectabHelp;
extern Widget frameAuthentication, formAuthentication, lbUserNameSectab, txtUserNameSectab, lbAuthMethodSectab,
    cbAuthMethodSectab, lbServicePrincNameSectab, txtServicePrnNameSectab, lbGssLibSectab, txtGssLibSectab;
extern Widget frameEncryption, formEncryption, lbEncryptMethodSectab, cbEncryptMethodSectab, tgValidServerCertSectab,
    lbTrustStoreSectab, txtTrustStoreSectab, lbTrustStorePwdSectab, txtTrustStorePwdSecTab, lbHostNameCertSectab,
    txtHostNameCertSectab;
extern Widget lbKeyStroreSectab, txtKeyStoreSectab, lbKeyStorePassSectab, txtKeyStorePassSectab, lbKeyPasswordSectab,
    txtKeyPasswordSectab;

// Performance.
extern Widget frmPerformance, btnPerformance, btnperfhelp;
extern Widget lbselmethod, cbselmethod, lbprepmethod, cbprepmethod, lbfetcharray, txtfetcharray, lbpacsize, txtpacsize,
    lbconcachesize, txtconcachesize;

// Failover.
extern Widget frmFailover, btnFailover, btnfailHelp, tgloadbal;
extern Widget lbconretcnt, txtconretcnt, lbconretdel, txtconretdel, lbaltserv, txtaltserv;
extern Widget lbFailoverMode, cbFailoverMode, lbFailoverGranularity, cbFailoverGranularity, tgFailoverPreconnect;

// Pooling (built by createConnPoolTab).
extern Widget frmPool, btnPool, btnPoolhelp, tgEnableConnPool, tgConnReset;
extern Widget lbMaxPoolSize, txtMaxPoolSize, lbMinPoolSize, txtMinPoolSize, lbLoadBalanceTimeout, txtLoadBalanceTimeout;

// About: the form comes from createAbtForm; the tab button is made here.
extern Widget frmAbout, btnAbout;

#endif
