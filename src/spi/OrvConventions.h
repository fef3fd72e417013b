// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVCONVENTIONS_H
#define ORV_SPI_ORVCONVENTIONS_H

/// \file
/// The words and rules that all tables of this directory share. There are no declarations here.
///
/// Two pages stand beside this one. OrvHostGuide.h says what a host offers, in which order it
/// brings itself and the component up, and what happens without each piece. OrvAssociations.h says
/// what the component does with references, what it judges at the end of a transaction, and which
/// messages a client gets. If you write a host, read the guide first.
///
/// *The component* is ext_cm, the shared object libext_cm.so that a host loads. *The router* is the
/// host's CM router, which keeps the managed objects. A *client* calls the managed-object tables of
/// the component. An *MO* is a managed object, a *MOC* its class. *The helper library* is
/// liborv_common, which the host and the component share.
///
/// A *caller* calls a slot, and the *callee* serves it: the component serves the tables that it
/// offers, the host serves its own. A table of managed objects is offered by both. What its slots
/// say of the callee holds for the component, and for the router as well.
///
/// 1. Tables
///
/// A table is a plain record: its identity (OrvMgmtSpiInterface_1), then pointers to functions. A
/// function takes no object. A function that is declared must be there; a slot named `reserved` is
/// never called and may be null. A table keeps its place and its content as long as it is offered.
///
/// 2. How a slot is described
///
/// Above each slot stands what it does, then the lines that apply, in this order:
///
///     DN:     what each DN that goes in names, and its form (rule 8)
///     In:     pointers that go in: which are checked (rule 4), which may be null
///     Out:    what each out parameter holds, and who owns it until when
///     When:   states, threads and locks
///     Codes:  what is answered, and what becomes of it
///     Why:    the reason, where a rule looks wrong
///
/// A line `As:` names a slot whose lines hold here too. `When: started.` with no more words means:
/// the component is started (rule 6), any thread, and none of the component's locks is held. What
/// the slots of one table have in common stands once, at the head of its file.
///
/// 3. Pointers
///
/// *Borrowed*: valid until the call returns. The callee writes nothing through it and copies what
/// it keeps. Every pointer that goes in is borrowed unless the slot says otherwise.
///
/// *Owned by X until Y*: the reader neither writes to it nor frees it, and does not touch it after
/// Y.
///
/// *Given*: passes to the receiver, who hands it back exactly once through the release function
/// that came with it.
///
/// 4. Nulls and wrong values
///
/// A caller passes no null unless In says "may be null". A callee should still expect one, because
/// clients make mistakes, and the component does not look at everything. In says of the component:
///
/// *Checked*: the component looks at the argument. If it is null, or a value that cannot be read,
/// the component answers OrvFailure and does nothing. So the router never gets it null.
///
/// *Not checked*: the component passes it on as it came. A null can arrive at the router.
///
/// A value is checked as far as the component reads it. These are refused with OrvFailure:
///
///   - type 11 (MoRef): a count without values, or a null among the texts.
///   - type 14 (Struct): a count without values. The component then looks for a reference among the
///     members of the first struct, and a member with a null `value` that it meets on the way is
///     refused. If it finds a reference, it reads the whole container: a member with a null name is
///     refused, inner values are checked by these same rules, and a null `value` is accepted (not
///     in version "1"). If it finds none, it reads no further.
///
/// Everything else reaches the router: a value of any other type with any fields (a count of 2 and
/// null values, a null String, a type code that nobody knows), and a struct that shows no reference
/// with null member names. A router that looks into values tests for null itself.
///
/// What the host answers is not trusted either. OrvOk with a null, with a count and no values, or
/// with a list that does not end does not end the process; each slot says what it means.
///
/// 5. Out parameters
///
/// The pointer itself is borrowed. What it points at may hold anything before the call: write it,
/// do not read or release it. Write it with OrvOk only; what it holds after another code has no
/// meaning unless Out says otherwise. A caller gives it a known value before the call.
///
/// 6. States of a component
///
/// *Registered*: orvLCMinit has returned OrvOk. *Started*: `start` has returned OrvOk. *Stopped*:
/// not started, or `stop` has been called. While `start` or `stop` runs, the host lets no call into
/// an offered table: nothing is locked there. End all transactions before `stop`; values that a
/// client has not released may be released later, but before the shared object is closed.
///
/// 7. Threads and locks
///
/// A slot may be called from any thread, by several at once, and the component holds none of its
/// locks meanwhile. That is so unless When says otherwise. The locks that a host may meet:
///
///   - the *registry lock*: held while the component joins a transaction. All transactions that are
///     about to join, or to finish, wait for it.
///   - the *back-pointer lock*: held while the component adds a reference on the far side of a
///     bidirectional association, or writes that side. One for all transactions.
///   - the *reference lock*: held while unidirectional references are validated. One for all
///     transactions.
///
/// A function that is called with one of them must not call the component and must not wait for
/// another thread that may be inside the component. The exception is the resource's `join`, which
/// takes no lock. A function that is called without a lock may call the component.
///
/// 8. Distinguished names (DNs)
///
/// A DN is a list of steps from the root down, joined by ",": `ManagedElement=1,Unit=7`. A step is
/// `Class=value`, or `Class.attr=value` with the name of the naming attribute. An empty DN is the
/// top level, where a slot says that it is allowed. A MOC path is the list of classes:
/// `ManagedElement,Unit`.
///
/// *External* is the form that clients speak: the root has the identity by which the outside knows
/// it. *Internal* is the form of the router, the model and the interceptors: the root's value is
/// always `1`. The two differ in nothing else. In a slot of a managed-object table a DN is external
/// at the component's table and internal at the router's. All other tables have internal DNs.
///
/// The component translates DNs in arguments and in values of the type 11, in both directions, with
/// Orv::MeIdTranslator, which the host configures (OrvHostGuide.h, 3). It checks nothing else of a
/// DN, and a DN in a value that cannot be translated is passed on as it came: any text can arrive
/// where a DN should be.
///
/// *Two forms of one MO.* The default naming attribute of a class is the class name with its first
/// letter small, and "Id": `unitId` of `Unit`. With any other naming attribute the component uses
/// both `Unit=7` and `Unit.label=7` for the same MO: a router and a model must know both as that
/// MO. The component itself compares DNs as texts, byte for byte, so that for associations the two
/// forms are two MOs (OrvAssociations.h, 9).
///
/// *The leading comma.* When an MO has been created at the top level, the component builds its DN
/// from the empty DN of the parent, and gets `,ManagedElement=1`. It asks the model and the router
/// about this text. Answer it as unknown: OrvNotExist from getMocFromDn, false from existsMo. A
/// model that knows it makes the component write this text into other MOs (OrvAssociations.h, 9).
///
/// 9. Transactions
///
/// A transaction handle is a number; 0 is a handle like any other. One transaction is driven by one
/// thread at a time, its operations and its phases included.
///
/// A slot that *joins* makes the component a participant of the transaction, at the first such call
/// with its handle: the component calls OrvOamSpiTransaction_1::join from inside. A transaction
/// without such a call never hears of the component.
///
/// Give each transaction a new handle: the attributes of associations that a transaction wrote are
/// remembered under its handle also after `finish`, and a later transaction with that handle has
/// them validated again.
///
/// What an operation did before it failed stays done: undoing is the transaction's abort.
///
/// 10. Codes and exceptions
///
/// The codes with names are in OrvReturn.h. Every other value belongs to the host.
///
/// What a client asked for: the code of the router or the interceptor that served the operation
/// goes to the client unchanged. A code does not say who gave it. OrvNotActive, for example, can
/// come from a stopped component, and just as well from a router. Callers test for OrvOk and, where
/// a slot says so, OrvNotExist.
///
/// What the component asks on its own account, for the far sides of associations and at `validate`:
/// a code other than OrvOk never fails the client's operation, and most of them are only traced
/// (OrvAssociations.h, 8).
///
/// A host's function reports by its code. If it throws a std::exception all the same, the
/// component's slot that called it answers OrvFailure. Other exceptions pass through the component
/// to its own caller; do not throw them. A release function's exception of any kind is dropped. The
/// component's slots let no std::exception out. `orvLCMinit` and `orvLCMterminate` may throw.
///
/// 11. Texts and limits
///
/// Texts end with a zero byte. DNs, names and values are compared byte for byte, with no regard to
/// case or normal forms. The encoding is UTF-8: Orv::DnUtil::validateMoNamingAttr refuses anything
/// else. That check is made for one attribute only, "networkManagedElementId", on an MO of any
/// class: its value is meant to stand in DNs. No other text is checked. In particular the naming
/// value of a new MO can hold a "," or a "=": the router must refuse what it does not want in a DN.
/// Messages hold these texts as they are.
///
/// The component sets no limit to the length of a text, a DN or a list of references. Its limits
/// are there to end what has no end: 4,000,000 pieces (members, slots and texts) in a struct,
/// 1,000,000 steps in a list of the model, and 10,000 levels or 10,000,000 MOs in a subtree that is
/// deleted.

#endif
