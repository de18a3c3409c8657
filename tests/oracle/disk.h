#pragma once
// A model's tree on the disk, and what is there told as a model would.

#include "model.h"

/// Makes the tree in the directory path, which ends in "/".
void MakeOnDisk(const std::string& path, const NodePointer& directory);

/// The tree that is there, hard links told by their inodes. What its owner may not read is read all the same.
NodePointer ReadDisk(const std::string& path);

/// Removes what is in the directory, whatever its modes.
void EmptyOnDisk(const std::string& path);

/// What differs, one line each; empty when nothing does. Inodes that the model knows must be those
/// on the disk, and it learns those that it does not know.
std::string Compare(const NodePointer& model, const NodePointer& disk, const std::string& path);

/// One line for each name.
std::string Describe(const NodePointer& directory, const std::string& path);

/// A path or content with what cannot be printed escaped, and cut to a length that can be read.
std::string Printable(const std::string& text);
