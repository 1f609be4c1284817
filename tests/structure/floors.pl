#!/usr/bin/perl
# Checks that the folders of a tree include only what their table allows: floors.pl TABLE ROOT [PREFIX]
# A line of the table names a folder and those that it may include, which stand above it. PREFIX is what includes of the tree
# begin with.
use strict;
use warnings;

my ($table, $root, $prefix) = @ARGV;
die "usage: see the head of $0\n" unless defined $root;
$prefix //= '';

my (%allowed, $bad);
sub complain { print "@_\n"; $bad++ }

open my $lines, '<', $table or die "$table: $!\n";
while (<$lines>) {
  my ($folder, @below) = split or next;
  next if $folder eq '#';
  $allowed{$_} or complain("$table: $folder may not include $_, which is not above it in the table") for @below;
  $allowed{$folder} = { map { $_ => 1 } $folder, @below };
}

my $files = 0;
for my $file (glob "$root/*/*.h $root/*/*.cpp") {
  my ($folder) = $file =~ m{([^/]+)/[^/]+$};
  complain("$file: $folder is not in the table"), next unless $allowed{$folder};
  open my $in, '<', $file or die "$file: $!\n";
  $files++;
  while (<$in>) {
    my ($target) = m{^\s*#include "\Q$prefix\E(\w+)/} or next;
    complain("$file:$.: $folder may not include $target") if $allowed{$target} && !$allowed{$folder}{$target};
  }
}
die "no sources in $root\n" unless $files;
print "$files files in ", scalar(keys %allowed), " folders\n";
exit($bad ? 1 : 0);
