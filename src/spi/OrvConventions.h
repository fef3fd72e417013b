// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVCONVENTIONS_H
#define ORV_SPI_ORVCONVENTIONS_H

/// \file
/// The words and rules that all tables of this directory share. There are no declarations here.
///
/// *The component* is ext_cm, the shared object that a host loads. *The router* is the host's CM
/// router. A *client* is what calls the component's managed-object tables. An MO is a managed
/// object, a MOC its class.
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
///     DN:     the form of each DN that goes in (rule 8)
///     In:     pointers that go in: who owns them, which may be null
///     Out:    what each out parameter holds, and who owns it until when
///     When:   states, threads and locks
///     Codes:  what is answered, and what becomes of it
///     Why:    the reason, where a rule looks wrong
///
/// A line `As:` names a slot whose lines hold here too.
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
/// A caller passes no null unless In says "may be null". A callee should still expect one: the
/// component checks only what it reads itself, and hands on what it does not read. So a null, an
/// unknown type code or any text can reach the router; In says where. Types 11 and 14 in a client's
/// values are checked as a whole before anything is done; other types are not looked into.
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
/// `Class=value`. If the naming attribute is not the class's default one (the class name with its
/// first letter small, and "Id"), the step can also be `Class.attr=value`: with such MOs the
/// component uses both forms. An empty DN is the top level, where a slot says that it is allowed. A
/// MOC path is the list of classes: `ManagedElement,Unit`.
///
/// *External* is the form that clients speak: the root has the identity by which the outside knows
/// it. *Internal* is the form of the router, the model and the interceptors: the root's value is
/// always `1`. The two differ in nothing else. The component translates DNs in arguments and in
/// values of the type 11, in both directions. It checks nothing else of a DN, and a DN in a value
/// that cannot be translated is passed on as it came: any text can arrive where a DN should be.
///
/// The DN of an MO that was just created at the top level begins with a comma when the component
/// asks about it (`,ManagedElement=1`). Such a DN may be answered like any other unknown one.
///
/// 9. Transactions
///
/// A transaction handle is a number; 0 is a handle like any other. One transaction is driven by one
/// thread at a time, its operations and its phases included. A slot that *joins* makes the
/// component a participant at the first such call of the transaction. Give each transaction a new
/// handle: the attributes of associations that a transaction wrote are remembered under its handle
/// also after `finish`, and a later transaction with that handle has them validated again.
///
/// What an operation did before it failed stays done: undoing is the transaction's abort.
///
/// 10. Codes and exceptions
///
/// The codes with names are in OrvReturn.h. Every other value belongs to the host and is passed on
/// to the client unchanged; callers test for OrvOk and, where a slot says so, OrvNotExist.
///
/// A host's function reports by its code. If it throws a std::exception all the same, the
/// component's slot that called it answers OrvFailure. Other exceptions pass through the component
/// to its own caller; do not throw them. A release function's exception of any kind is dropped. The
/// component's slots let no std::exception out. `orvLCMinit` and `orvLCMterminate` may throw.

#endif
