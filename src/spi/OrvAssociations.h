// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVASSOCIATIONS_H
#define ORV_SPI_ORVASSOCIATIONS_H

/// \file
/// What the component does with references between MOs: what it writes itself, what it judges at
/// `validate`, and which messages a client gets. There are no declarations here. The words are
/// explained in OrvConventions.h. All DNs below are internal, with the root left out in examples.
///
/// 1. The two kinds of associations
///
/// A *bidirectional* association has a reference attribute on both sides. When a client writes one
/// side, the component writes the other one, the *far side*: it adds the DN of the MO that refers,
/// or removes it. What it writes there is also called a *back-pointer*.
///
/// A *unidirectional* association has one attribute. The component writes nothing. It remembers the
/// value until the transaction is finished, and judges it.
///
/// 2. An example, and how it lies in the model
///
/// A Group has one or more Units in its attribute `members`; a Unit has at most one Group, in its
/// attribute `group`. This is one bidirectional association with two ends. An end lies at a MOC. It
/// has the name of the attribute that points *at* that MOC, and that attribute is in the *other*
/// MOC. So the end at Group is named "group". Its bounds say how many Groups a Unit may refer to.
///
///     MOC 1 Group, MOC 2 Unit          getFirstBiDirAssociation of 1, and of 2: association 10
///                                      getNextBiDirAssociation(10, ...): OrvNotExist
///                                first end (11)           second end (12)
///     getEndMoc                  1 (Group)                2 (Unit)
///     end name, general name     "group"                  "members"
///     end role                   "groups"                 "units"
///     end bounds                 0..1                     1..9223372036854775807
///     getEndAttribute            22 (group of Unit)       21 (members of Group)
///     getAttributeMoc of that    2 (Unit)                 1 (Group)
///
///     attribute                  21 members               22 group
///     getFirstAttribute of       1 (Group)                2 (Unit)
///     type code                  11                       11
///     type bounds                1..9223372036854775807   0..1
///     getReferencedMoc           2 (Unit)                 1 (Group)
///
/// An open upper bound is any number that no count reaches; the reference host uses the one above.
/// It is shown to the client as it is.
///
/// The bounds stand in the model twice. The bounds of the type limit the number of all values of
/// the attribute, and those of the end limit the number of values of the end's MOC. Both must be
/// satisfied, and those of the type are looked at first. For an attribute with one permitted MOC
/// make them equal. An attribute may have several permitted MOCs: then it has one association for
/// each of them, each with an end of its name and bounds of its own, and getReferencedMoc gives a
/// MOC that is named "ManagedObject".
///
/// A unidirectional association has one end: its name is the attribute's, its MOC a permitted
/// target, its bounds those for this target. It is listed at the MOC that has the attribute.
///
/// An association can join a MOC to itself. Both ends then lie at that MOC, with different names.
///
/// *Subclasses* do not exist for the component. It asks for the MOC of a DN, and compares handles.
/// If a class inherits an association, the model lists one for the concrete class, with ends that
/// lie at concrete classes. One MOC may stand under several class paths.
///
/// 3. What counts as a reference
///
/// A value of type 11 in setMoAttribute of version "3", setMoAttributes of version "3_1" or
/// createMo of version "3". It is the type of the *value* that counts, not the type in the model: a
/// DN in a value of type 9 is not translated, gets no far side and is not judged. References in a
/// struct are translated (OrvMoAttributeValue.h), and nothing else. What is written through version
/// "1", or by the router or an interceptor on its own, is not seen at all.
///
/// 4. What an operation does
///
/// *Set*, before the router or the interceptor is called: the component reads the old value from
/// the router and compares it with the new one. It removes the MO from the far sides of the
/// references that have gone, and adds it to those of the references that have come. Then the
/// router gets the new value. If it refuses, the far sides stay written: abort the transaction.
///
/// *Create*, after the router has created the MO: the same with an old value that is empty.
///
/// *Delete*, before the router is called: for the MO and everything below it, children first, the
/// component reads the reference attributes from the router, and removes the MO from their far
/// sides. The children come from the router's iterators. It does not search for MOs that refer to
/// the deleted one: if both sides agree, its own attributes name them. An end with
/// VekOamSpiMrEndKeepAtDelete_4 is left out: if the first end above (at Group) has it, `members` of
/// a deleted Group is not followed, and its Units go on referring to it.
///
/// A far side whose MO does not exist yet: the addition waits. It is written when the MO is created
/// through createMo of version "3" *in the same transaction*. At `finish` it is dropped: a target
/// that is created in a later transaction gets no far side. If the client takes a reference to an
/// MO that does not exist out of an attribute again, all additions that wait for this attribute of
/// its MO are dropped.
///
/// Values are not made unique. [U1, U1] on a Group without members gives U1 two equal far
/// references; a value that was there before is not added again. Each of them counts. A client
/// should write one side only: if it creates an MO with a reference, and the other side names that
/// MO already, both sides hold the reference twice.
///
/// 5. Clearing a reference
///
/// Write a value of type 11 with count 0. The far sides then follow, and the attribute is judged.
///
/// A null value in setMoAttribute, and a value of another type (type 0 with count 0, "no value"),
/// are not references (section 3). They change the near side only: the far side keeps its
/// reference, the attribute is not judged on their account, and a reference that is written again
/// later stands on the far side twice. In a unidirectional association the value that was written
/// before in the transaction stays the one that is judged.
///
/// 6. What validate judges
///
/// Only what the transaction wrote. For bidirectional associations these are pairs of MO and
/// attribute:
///
///   - each far side that the component has written, and
///   - each attribute that a client wrote with a value of type 11, if the MO's MOC takes part in
///     any bidirectional association, at any attribute. So an attribute of such a MOC is judged
///     here too if it is unidirectional, or in no association. The model must list it with a type
///     and bounds as well. A MOC in no bidirectional association may have attributes of type 11
///     that the model does not know.
///
/// For each pair, in the order of the DNs' bytes: the component asks the router whether the MO
/// exists. If not, or if the router answers with another code than OrvOk, the pair is passed over.
/// It reads the value from the router, as it is now, past interceptors. Then, in this order:
///
///   a. the DN of the MO has a MOC;
///   b. the attribute has the type code 11 in the model;
///   c. the number of values is within the bounds of the type;
///   d. for each association whose other end has the attribute's name: each value has a MOC, and
///      the number of values of that end's MOC is within the bounds of that end. In an association
///      of a MOC with itself this is done only for the attribute named after the second end;
///   e. each value has a permitted MOC: the one of getReferencedMoc, exactly; or, if that is named
///      "ManagedObject", one of the MOCs counted under d; or any MOC, if d found no association.
///
/// The first violation ends the check of all pairs.
///
/// For unidirectional associations these are the attributes that a client wrote with a value of
/// type 11, if the MO's MOC has a unidirectional association with an end of the attribute's name.
/// The last such value is judged, as it was written: the router is not asked. MOs that were deleted
/// in the transaction are left out. Each value must have a MOC that is the MOC of such an end; for
/// each end, the number of values of its MOC must be within its bounds. All violations are
/// reported.
///
/// What is *not* judged:
///
/// - attributes that nobody wrote. A Group that is created without `members` is valid, though the
///   lower bound is 1. If it is created with `members` of type 11 and count 0, it is not.
/// - whether the target of a reference exists. The MOC of a DN comes from its class path. A
///   reference to an MO that does not exist, or is deleted, is valid and counts like any other;
///   it also satisfies a lower bound.
/// - whether both sides agree.
/// - references in structs, and everything that is no reference.
/// - an attribute whose old value the router could not read, and an MO whose DN has no MOC, at
///   the time of the write.
///
/// 7. The messages
///
/// They go to addMessage of the thread context with the kind 1, the only one: why the transaction
/// is not valid. They are for people. DNs are internal. The words in <> are put in. N is the number
/// of values.
///
/// Of the check of bidirectional associations, at most one, but for the exception below:
///
///     a, d, e  <DN> does not correspond to a valid MO type.
///     b        Attribute <attribute> in <DN> is not a MO ref.
///     c        Multiplicity of attribute <attribute> in <DN> is not in range (<lower>..<upper>).
///     d        Attribute <attribute> in <DN> contains <N> <role> which is not within cardinality
///              range (<lower>..<upper>).                                    (in one line)
///     e        <MOC> is not a valid type for attribute <attribute> in <DN>.
///
/// Since c comes before d, the role is seen only if the bounds of the type let the number pass. A
/// text that the model has not got (null) ends the message before it.
///
/// The exception: where d has found no association, e meets values without a MOC. The first message
/// then comes once for each value from there on, always with the same DN, and the last message
/// after them, with the MOC of the value before, or as an empty text if there is none.
///
/// Of the check of unidirectional associations, any number:
///
///     <reference> is not a valid type for attribute <attribute> in <DN>      (it has no MOC)
///     <MOC> is not a valid type for attribute <attribute> in <DN>            (no end has it)
///     Attribute <attribute> in <DN> contains <N> <MOC> which is not within cardinality range
///     (<lower>..<upper>).                                          (in one line)
///
/// The two ways in which an attribute is judged do not know of each other: one fault can be
/// reported by both.
///
/// 8. When the host fails
///
/// What the component reads and writes on its own account never fails the client's operation. The
/// code does not reach the client, and is only traced, where nothing else is said:
///
///   - the near attribute cannot be read: no far side is written, and the attribute is not judged
///     by the rules of bidirectional associations. At a delete: its far sides stay. An answer with
///     OrvOk that is no list of references counts as an empty one.
///   - existsMo of a far MO fails: taken as "does not exist". An addition waits.
///   - the far side cannot be read, or is not a list of references: it is left as it is. The near
///     side is judged, and is not found wrong for that: a one-sided association can be committed.
///   - the far side cannot be written: the same. The far attribute is not judged.
///   - the children of a deleted MO cannot be listed: those that were listed are followed.
///   - the model has no MOC for a DN at a write: that MO or reference is left out, with a log of
///     level 3. For the DN of the written MO there is also a log of level 4, from the record of
///     unidirectional references.
///   - at `validate`, existsMo fails: the pair is passed over. getMoAttribute fails, or gives
///     something that is no list of references: the verdict is false, without a message for it.
///   - the model fails otherwise: see VekOamSpiModelRepository_4.h.
///
/// A router that must not end with a one-sided association refuses the commit itself when it has
/// answered one of these calls with an error.
///
/// 9. DNs are compared as texts
///
/// An MO with a naming attribute that is not the default has two forms (OrvConventions.h, 8):
///
///   - createMo writes `Unit.label=x` into far sides, and asks the router for this form at
///     `validate`. A router that does not know it has the MO passed over there. The record of
///     unidirectional references has `Unit=x`.
///   - setMoAttribute and setMoAttributes use the form of the client's DN.
///   - deleteMo removes the form of the client's DN, and for MOs below it `Unit=x`.
///
/// So a reference that came in one form is not removed in the other: it stays on the far side, and
/// is valid (section 6). Give classes with bidirectional associations their default naming
/// attribute.
///
/// The DN of an MO that createMo makes at the top level begins with a comma. The model must answer
/// it with OrvNotExist. The references in that createMo then get no far side and are not judged,
/// with logs of the levels 3 and 4; createMo answers OrvOk. If the model knows the text, the
/// component writes `,Unit=7` into the far sides, where clients read it and deleteMo does not
/// remove it. Orv::DnUtil::getMocPath passes over the comma: a model that uses it must look for the
/// comma first. References that are set after the creation are not concerned. Additions that wait
/// for an MO at the top level (section 4) are not written when it is created.
///
/// 10. The calls for one write and its validation
///
/// A client sets `group` of Unit=7 from nothing to [Group=1], in transaction 5. The router gets:
///
///     getMoAttribute(5, Unit=7, group)                 count 0
///     existsMo(5, Group=1)                             true
///     getMoAttribute(5, Group=1, members)              count 0
///     setMoAttribute(5, Group=1, members, [Unit=7])    type 11
///     setMoAttribute(5, Unit=7, group, [Group=1])      the client's write
///
/// Before and between these calls the model is asked: getMocFromDn of Unit=7, its associations,
/// their ends, names and MOCs, getMocFromDn of Group=1; and, before the last call, the
/// unidirectional associations of Unit. At `validate`, and only then, it is asked for attributes,
/// types and bounds, and the router gets:
///
///     existsMo(5, Group=1)    getMoAttribute(5, Group=1, members)
///     existsMo(5, Unit=7)     getMoAttribute(5, Unit=7, group)

#endif
