// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVHOSTGUIDE_H
#define ORV_SPI_ORVHOSTGUIDE_H

/// \file
/// What a host offers, and in which order it brings itself and the component up. There are no
/// declarations here. The words are explained in OrvConventions.h.
///
/// 1. The tables of a host
///
/// Each table stands in the header of its name, with its identities beside it as constants. The
/// last column says how it is looked up: *P* at the portal of version "1", *H* through the helper
/// library (section 2).
///
///     component                        interface                 version  by
///     OrvOamSpiCmRouterService         OrvOamSpiManagedObject    1        P
///     OrvOamSpiCmRouterService         OrvOamSpiManagedObject    3        P, H
///     VekOamSpiCmRouterService         VekOamSpiManagedObject    3_1      P, H
///     VekOamSpiCmRouterService         VekOamSpiManagedObject    3        H
///     VekOamSpiModelRepositoryService  VekOamSpiModelRepository  4        H
///     VekMgmtSpiThreadContextService   VekMgmtSpiThreadContext   2        H
///     OrvOamSpiTransactionService      OrvOamSpiTransaction      1        P
///
/// The router of version "3" is asked for under two identities. Offer one table under both. Which
/// of the two stands in the identity field of the table does not matter: the component reads the
/// identity of no host table. Below, *the Vek router* is what is found under the second of them,
/// VekOamSpiManagedObject_3_RouterId.
///
/// What happens without each of them:
///
/// - a router that is looked up by P: `start` answers OrvFailure.
/// - the Vek router: `start` answers OrvOk, with logs of level 4. No far side of an association
///   is written. Attributes that are set are not judged by the rules of bidirectional
///   associations either: such a transaction can be valid although nobody has looked. A
///   transaction that created an MO with references, of a class with bidirectional associations,
///   is not valid, with a log of level 3.
/// - the model repository: `start` answers OrvOk, with logs of level 4. No association is
///   followed, and no transaction is valid, not even one that wrote nothing. The client gets no
///   message.
/// - the thread context: `start` answers OrvOk, with logs of level 4. No transaction is valid,
///   and the client gets no message. Far sides are written.
/// - the transaction table: `start` answers OrvOk, without a log. A slot that joins answers
///   OrvFailure, with a log of level 3; the others are served.
///
/// 2. Two ways of lookup
///
/// *P*: the component calls OrvMgmtSpiInterfacePortal_1::getInterface. It has the portal from
/// orvLCMinit.
///
/// *H*: the component, interceptors and the helper library call Orv::Portal::getInterface, which is
/// declared in Portal.h and lives in the helper library. Orv::Portal asks the function that the
/// host gave it with Orv::Portal::attach. It does not find the portal of orvLCMinit by itself. The
/// host gives it the same function: `Orv::Portal::instance()->attach(portal1.getInterface)`.
/// Without attach every lookup by H fails, whatever the portal offers: all that the list above says
/// of the Vek router, the model and the thread context then holds at once.
///
/// Orv::Portal remembers what it has found, one table for each of four types, until detach. `stop`
/// does not make it forget. See section 5.
///
/// 3. Bringing up
///
///  1. Link the shared library liborv_common, the one that libext_cm.so needs (its soname). What is
///     configured below are objects of that library, one of each in a process. A second copy, or
///     one that is linked statically, has objects of its own, and the component sees nothing of
///     what was set there.
///  2. `Orv::LoggingWrapper::instance()->setSink(...)` and `setLevel(...)`. Without a sink all logs
///     are dropped.
///  3. `Orv::MeIdTranslator::instance()->configure(identity, "")`: the identity by which clients
///     know the root. Without it every DN with a ManagedElement at the root is answered
///     OrvNotExist.
///  4. `Orv::Portal::instance()->attach(...)`, section 2.
///  5. dlopen the component with RTLD_LOCAL. Every component exports the same two names:
///
///         extern "C" OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor,
///                                          const char* argument);
///         extern "C" void orvLCMterminate();
///
///  6. Look them up with dlsym and call the first. From inside it calls getPortal("1"),
///     getPortal("3") and registerComponent, which hands over the record OrvMgmtSpiComponent_1. The
///     argument is ignored and may be null. The answer is OrvFailure if the accessor is null or
///     there is no portal "1", or the code of registerComponent.
///  7. Offer all tables of section 1.
///  8. Call `start` of the record. The component looks up its tables in it, and not before.
///  9. Find the offered tables in interfaceArray of the record. Answer getInterface for them as
///     well: interceptors ask for one of them (section 7). Then let clients in.
///
/// Steps 2, 3, 4 and 7 can come in any order, and later than step 6, but before step 8. If `start`
/// answered OrvFailure, offer what was missing and call it again.
///
/// 4. Going down
///
/// Keep clients out; end all transactions, each with its `finish`; `stop`; orvLCMterminate; let
/// clients release the values that they still hold; dlclose; detach. Call orvLCMterminate also if
/// orvLCMinit failed: it may have registered. A component that registered at a portal of version
/// "1" is not unregistered: forget its record before dlclose.
///
/// 5. Starting again, and other tables
///
/// - `start` while started, or after a `start` that failed: asks by P for the routers that it does
///   not have and for the transaction table, and by H for what Orv::Portal has not found yet.
/// - `stop`, then `start`: asks by P for everything again, and by H as before, only for what has
///   not been found yet. The Vek router, the model and the thread context stay the old ones.
/// - To put another table in the place of one that is looked up by H: `stop`, Orv::Portal::detach,
///   attach, `start`. Keep the old table until `detach` has returned.
///
/// 6. Transactions
///
/// The component takes part as one participant among others. It joins in the middle of an operation
/// (OrvConventions.h, 9). At the end the host calls its table OrvOamSpiTransactionalResource_2:
/// validate, prepare and commit, or abort; and always finish. Transactions in which it did not call
/// the host's join need none of these calls; they do no harm.
///
/// The order among participants:
/// - The router must still answer for the transaction while the component validates. It may count
///   as a participant before or after the component, or as none.
/// - prepare, commit, abort and finish of the component call nothing of the host and read no
///   value of the router. The router may end its part, and free the values of version "1", before
///   the component's finish. Clients must have done with these values then.
///
/// 7. Interceptors
///
/// An interceptor serves the attributes of one MOC path in the router's place. It lives in a shared
/// object of its own, which the host loads like the component, with the same two exported names.
/// Its authors use three headers that are installed beside those of this directory:
/// MoInterceptorBase.h (the base class, which finds the tables), ExtCmInterceptorRepository.h
/// (registerClass and deregisterClass) and Component.h (the body of the two exported functions).
///
/// The component's interceptor repository is the last entry of interfaceArray,
/// "ExtCmInterceptorRepositoryI" "1". It is a C++ object that begins with an identity, and no table
/// of functions. A host does nothing with it but answer lookups for it, through the function that
/// it has attached. Such components are started after ext_cm and stopped before it: they name the
/// repository in their dependencyArray.
///
/// 8. What a router must be able to do
///
/// - Serve internal DNs, in both forms of a step (OrvConventions.h, 8).
/// - Read inside a transaction what the transaction has written: the component reads back its own
///   writes, and existsMo of an MO that the transaction created.
/// - Accept that the component writes references that no client wrote: the far sides. They come in
///   the client's transaction, through setMoAttribute of version "3", as values of type 11. An
///   attribute that the component empties has type 11 and count 0.
/// - Answer the read of an attribute without a value with OrvOk and a container of count 0, of any
///   type (0 will do), or with no container. Another code counts as a failure, so that the
///   reference that is being written gets no far side.
/// - Answer existsMo of an MO that does not exist with OrvOk and false.
/// - Check what it needs to have checked: classes, attributes, types, naming values, multiplicities
///   of attributes that are no references, MOs that must not be deleted. The component does none of
///   this. Its only verdicts are those of OrvAssociations.h, 6.
/// - Test for null what is not checked (OrvConventions.h, 4), also in the values.
/// - End the iterators of a transaction when it ends. finalizeMoIterator may come never or twice.
///
/// 9. The top level
///
/// The top level is meant for one MO, the ManagedElement. The component names every child of the
/// top level by the identity of the root when a client iterates there, whatever its class: a second
/// MO there can be created and used by its DN, but not found by iteration. The DN of an MO of
/// another class is not translated. References that are given to a createMo at the top level are
/// not followed (OrvAssociations.h, 9): set them afterwards. The naming value of createMo is not
/// translated: the root is created with the value "1".
///
/// 10. Which headers a host needs
///
/// All that is installed stands in one directory. In the sources the headers of the helper library
/// are in src/orv_common/inc, and the templates in src/common/inc. A host needs the headers of this
/// directory, and Portal.h, MeIdTranslator.h and LoggingWrapper.h, where its part is marked "Host
/// only"; OrvReturnText.h and DnUtil.h can be of use. The others are for authors of components:
/// Component.h, OrvInterfaceBinders.h, AutoMemory.h, MoAccessor.h, Transaction.h, OrvException.h
/// and OrvThreadLock.h.

#endif
