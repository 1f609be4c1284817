#!/usr/bin/perl
# Derives from the list of classes what else has to name them: classes.pl LIST IDL SCRIPT OUT
# Writes OUT/classes.h (the headers, and TAVL_CLASSES with a row for each class), OUT/registration.rc and the registration
# scripts that it names, made from SCRIPT or from a class's own beside LIST. Identifiers are those of the IDL. A file that
# would not change is left as it is.
use strict;
use warnings;
use File::Basename qw(dirname);
use File::Path qw(make_path);

die "usage: see the head of $0\n" unless @ARGV == 4;
my ($list, $idl, $script, $out) = @ARGV;

sub slurp {
  my ($path) = @_;
  open my $in, '<', $path or die "$path: $!\n";
  local $/;
  return scalar <$in>;
}

sub write_changed {
  my ($path, $text) = @_;
  return if -e $path && slurp($path) eq $text;
  open my $file, '>', $path or die "$path: $!\n";
  print $file $text;
  close $file or die "$path: $!\n";
}

my $definition = slurp($idl);
my ($library) = $definition =~ /uuid\(([-0-9A-F]{36})\)[^{]*\blibrary\b/ or die "$idl: no library\n";
my %identifier = reverse $definition =~ /uuid\(([-0-9A-F]{36})\),[^\]]*\]\s*coclass (\w+)/g;

make_path("$out/registration");
my (%headers, $rows, $resources);
for (split /\n/, slurp($list)) {
  next if /^#/;
  my ($number, $class, $header, $own) = /^(\d+) (\w+) (\S+)(?: (\S+))?$/ or die "$list: $_\n";
  my $clsid = delete $identifier{$class} or die "$idl: no coclass $class\n";
  $headers{$header} = 1;
  $rows .= " row($class, $number)";
  $resources .= qq($number REGISTRY "registration/$class.rgs"\n);
  my $keys = slurp($own ? dirname($list) . "/$own" : $script);
  my %value = (CLASS => $class, CLSID => "{$clsid}", LIBID => "{$library}");
  $keys =~ s/\@(\w+)\@/$value{$1} \/\/ die "$script: $1 is unknown\n"/ge;
  write_changed("$out/registration/$class.rgs", $keys);
}
die "$list lacks: @{[sort keys %identifier]}\n" if %identifier;

write_changed("$out/classes.h",
              "#pragma once\n" . join('', map { qq(#include "$_"\n) } sort keys %headers) . "#define TAVL_CLASSES(row)$rows\n");
write_changed("$out/registration.rc", $resources);
