#!/usr/bin/perl
# Checks that the folders of src include only folders below them: one_way_down.pl SRC
use strict;
use warnings;

my %floor = (module => 7, legacy => 6, operations => 5, session => 4, objects => 3, convert => 2, com => 1,
             errors => 0, engine => 0);
my $src = shift // die "usage: see the head of $0\n";

my ($files, $bad) = (0, 0);
for my $file (glob "$src/*/*.h $src/*/*.cpp") {
  my ($folder) = $file =~ m{([^/]+)/[^/]+$};
  open my $in, '<', $file or die "$file: $!\n";
  $files++;
  while (<$in>) {
    next unless m{^\s*#include "(\w+)/};
    my $target = $1;
    next if $target eq $folder;
    next if defined $floor{$target} && defined $floor{$folder} && $floor{$target} < $floor{$folder};
    print "$file:$.: $folder includes $target, which is not below it\n";
    $bad++;
  }
}
die "no sources in $src\n" unless $files;
print "$files files, $bad includes that point up\n";
exit($bad ? 1 : 0);
